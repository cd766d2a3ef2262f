"""The module on its own: what programs do right, and what they do wrong."""
import asyncio
import gc
import socket
import subprocess
import sys
import textwrap
import threading
import time
import unittest
import weakref

import quorix
from server import Server

MESSAGE = b"<message from='juliet@s/balcony' type='chat'><body>O Romeo \xf0\x9f\x8c\xb9</body></message>"


def session_at(server, **properties):
    return session_on(server.port, **properties)


def session_on(port, **properties):
    return quorix.cSession(ServerAddress="127.0.0.1", Port=port - 65536 if port > 32767 else port,
                           username="u", Password="p", Resource="r", Reconnect=False, **properties)


class Members(unittest.TestCase):
    def refuses(self, number, call, *arguments, **named):
        with self.assertRaises(quorix.AutomationError) as caught:
            call(*arguments, **named)
        self.assertEqual(caught.exception.number, number, caught.exception)

    def test_properties_methods_enumerations(self):
        session = quorix.cSession(username="romeo")
        self.assertEqual((session.username, session.Mode), ("romeo", quorix.eMode.KV_Modern))
        session.Status = "a\U0001f339\ud800b"
        self.assertEqual(session.Status, "a\U0001f339\ud800b")
        self.assertIs(session.Socket, session.Socket)
        message = session.CreateMessage(Subject="s", ToJID="a@s", MSG_Type=quorix.MSG_Chat, Body="b")
        self.assertEqual((message.Subject, message.MSG_Type.name), ("s", "MSG_Chat"))
        self.assertIn("logs in", session.Connect.__doc__)
        self.assertIn("modern", quorix.cSession.Mode.__doc__)

    def test_collections_and_nodes(self):
        contact = quorix.cRosterItem()
        contact.AddGroup("Friends")
        contact.AddGroup("Verona")
        groups = contact.Groups
        self.assertEqual((len(groups), list(groups)), (2, ["Friends", "Verona"]))
        self.assertEqual((groups[1], groups["Verona"]), ("Friends", "Verona"))
        self.assertTrue("Friends" in groups and "Mantua" not in groups)
        roster = quorix.cSession().Roster
        roster.Add(contact, "key")
        self.assertTrue(roster[1] is contact and roster["key"] is contact and contact in roster)
        self.refuses(9, lambda: groups[0])
        self.refuses(5, lambda: groups["Mantua"])
        node = quorix.cXML_Node(xml="<a b='c'><d/><e/></a>")
        root = node.getNode("/a")
        self.assertEqual([child.nodeName for child in root.childNodes], ["d", "e"])
        self.assertEqual((root.getAttribute("b"), root.getAttribute("x"), root.parentNode), ("c", None, None))
        self.assertIs(root.firstChild, node.getNode("//d"))

    def test_bad_arguments(self):
        session, node = quorix.cSession(), quorix.cXML_Node()
        roster_add = session.Roster.Add
        for number, call, *arguments in [
            (13, setattr, session, "Port", "soon"),
            (13, setattr, session, "UseSSL", 1),
            (13, setattr, session, "Priority", True),
            (13, setattr, session, "Status", b"bytes"),
            (13, setattr, session, "Status", None),
            (6, setattr, session, "Port", 40000),
            (6, setattr, session, "LoginTimeout", 1 << 80),
            (5, delattr, session, "Status"),
            (449, node.GetTag),
            (450, node.GetTag, "a", None, None),
            (13, node.GetTag, "a", session),
            (91, session.SendGroupChatRequest, None, True),
            (91, roster_add, None),
            (13, roster_add, quorix.cVcard()),
            (13, roster_add, object()),
            (91, quorix.cMessage.SendMessage),
            (13, quorix.cMessage.SendMessage, session),
            (13, quorix.cMessage.SendMessage, 5),
            (10057, session.SendXML, "<a/>"),
        ]:
            with self.subTest(call=call, arguments=arguments):
                self.refuses(number, call, *arguments)
        for error, call in [
            (TypeError, quorix.cMessage),
            (TypeError, quorix.Object),
            (TypeError, lambda: quorix.cSession("positional")),
            (TypeError, lambda: node.GetTag("a", Knots=None)),
            (AttributeError, lambda: quorix.cSession(Prot=5222)),
            (AttributeError, lambda: session.on("OnMassage", print)),
            (ValueError, lambda: session.off("OnMessage", print)),
            (RuntimeError, lambda: session.Socket._on("Connect", print)),
        ]:
            with self.subTest(call=call):
                self.assertRaises(error, call)


class Threads(unittest.TestCase):
    def test_another_thread_is_refused_and_may_let_go(self):
        kept = [quorix.cSession()]
        errors = []

        def other():
            for act in (lambda: kept[0].Status, lambda: quorix.cAuth().SetSession(kept[0])):
                try:
                    act()
                except RuntimeError as error:
                    errors.append(str(error))
            kept.clear()

        thread = threading.Thread(target=other)
        thread.start()
        thread.join()
        self.assertEqual(errors, ["the object belongs to another thread"] * 2)
        self.assertTrue(quorix.cSession().Status == "")

    def test_objects_outlive_their_thread(self):
        server, kept = Server(), []
        self.addCleanup(server.close)

        def other():
            kept.append(session_at(server))
            kept[0].on("OnAuthorized", quorix.quit)
            kept[0].Connect(False)
            quorix.run()

        thread = threading.Thread(target=other)
        thread.start()
        thread.join()
        self.assertRaises(RuntimeError, lambda: kept[0].Active)
        kept.clear()


    def test_others_run_while_one_waits(self):
        listener = socket.create_server(("127.0.0.1", 0))

        def hang_up():
            with listener, listener.accept()[0] as connection:
                connection.recv(1)

        session = session_on(listener.getsockname()[1], Mode=quorix.KV_Classic, UseSSL=True)
        session.Socket.TimeOut = 60000
        errors = []
        session.on("OnSocketError", lambda node, text, number: errors.append(number))
        other = threading.Thread(target=hang_up)
        other.start()
        began = time.monotonic()
        session.Connect(False)  # shakes hands
        other.join()
        self.assertEqual(errors, [10053])
        self.assertLess(time.monotonic() - began, 20)


class Events(unittest.TestCase):
    def setUp(self):
        self.server = Server(MESSAGE)
        self.addCleanup(self.server.close)
        self.session = session_at(self.server)
        self.unraisable = []
        sys.unraisablehook, former = lambda hooked: self.unraisable.append(hooked.exc_value), sys.unraisablehook
        self.addCleanup(setattr, sys, "unraisablehook", former)

    def run_until(self, event="OnMessage"):
        self.session.on(event, lambda *arguments: quorix.quit())
        self.session.Connect(False)
        quorix.run()

    def test_reach_handlers_and_sinks_until_they_leave(self):
        heard = []

        class Sink(quorix.SessionEvents):
            def OnMessage(self, message):
                heard.append(("sink", message.Body))

            def OnIncomingXML(self, xml):
                heard.append("xml")

        sink = Sink()
        self.session.Advise(sink)
        self.session.on("OnMessage", lambda message: heard.append((message.FromJid, message.MSG_Type)))
        self.session.on("OnMessage", lambda message: self.session.Unadvise(sink))
        self.run_until()
        self.assertEqual(heard[-2:], [("sink", "O Romeo \U0001f339"), ("juliet@s/balcony", quorix.MSG_Chat)])
        self.assertIn("xml", heard)
        self.session.on("OnMessage", lambda message: quorix.quit())
        heard.clear()
        self.session.CreateMessage("a@s", quorix.MSG_Chat, "again", "").SendMessage()
        quorix.run()
        self.assertEqual(heard, [("u@127.0.0.1/r", quorix.MSG_Chat)])

    def test_go_on_when_a_handler_raises(self):
        heard = []
        self.session.on("OnMessage", lambda: heard.append("wrong number of arguments"))
        self.session.on("OnMessage", lambda message: heard.append(message.Body))
        self.run_until()
        self.assertEqual(heard, ["O Romeo \U0001f339"])
        self.assertEqual([type(error) for error in self.unraisable], [TypeError])

    def test_a_session_may_be_dropped_inside_its_own_event(self):
        dead = weakref.ref(self.session)

        def drop(message):
            self.session = None
            gc.collect()
            quorix.quit()

        self.session.on("OnMessage", drop)
        self.session.Connect(False)
        quorix.run()
        self.assertIsNone(dead())

    def test_come_while_other_threads_work(self):
        # The server is such a thread: without the lock it could say nothing.
        worked = []
        threading.Timer(0.05, lambda: worked.append(True)).start()
        self.session.on("OnMessage", lambda message: worked or self.session.CreateMessage(
            "a@s", quorix.MSG_Chat, "again", "").SendMessage())
        self.session.on("OnMessage", lambda message: worked and quorix.quit())
        self.session.Connect(False)
        quorix.run()


class Asyncio(unittest.TestCase):
    def test_logs_in_and_iterates(self):
        async def talk(server):
            session = session_at(server)
            arriving = session.messages()
            await session.login()
            session.CreateMessage("a@s", quorix.MSG_Chat, "two", "").SendMessage()
            bodies = []
            async for message in arriving:
                bodies.append(message.Body)
                await asyncio.sleep(0.01)
                if len(bodies) == 2:
                    session.Disconnect()
            return bodies

        server = Server(MESSAGE)
        self.addCleanup(server.close)
        self.assertEqual(asyncio.run(asyncio.wait_for(talk(server), 20)), ["O Romeo \U0001f339", "two"])

    def test_tells_why_a_login_failed(self):
        server = Server()
        with socket.create_server(("127.0.0.1", 0)) as closed:
            server.port = closed.getsockname()[1]
        with self.assertRaises(quorix.SessionError) as caught:
            asyncio.run(asyncio.wait_for(session_at(server).login(), 20))
        self.assertEqual(caught.exception.code, 10061)


class Endings(unittest.TestCase):
    def test_thousands_of_sessions_leave_nothing(self):
        def make():
            session = quorix.cSession(Status="x")
            session.on("OnMessage", lambda message: session.Status)  # a cycle
            session.Roster.Add(quorix.cRosterItem(JID="a@s"))
            return weakref.ref(session)

        def memory():
            with open("/proc/self/statm", encoding="ascii") as file:
                return int(file.read().split()[1]) * 4

        alive = [make() for _ in range(1000)]
        gc.collect()
        before = memory()
        alive += [make() for _ in range(10000)]
        gc.collect()
        self.assertEqual([session for session in alive if session() is not None], [])
        self.assertLess(memory() - before, 4096)

    def test_the_interpreter_may_end_with_sessions_open(self):
        program = textwrap.dedent("""
            import sys, threading, time
            import quorix
            from server import Server
            from test_quorix import session_at
            server = Server()
            session = session_at(server)
            session.on("OnAuthorized", quorix.quit)
            session.on("OnDisConnected", lambda: print("too late"))
            session.Connect(False)
            quorix.run()
            def other():
                global kept
                kept = quorix.cSession()
                kept.on("OnMessage", print)
                threading.Event().wait()
            threading.Thread(target=other, daemon=True).start()
            while "kept" not in globals(): pass
            def inside_an_event():
                session = session_at(server)
                def stay():
                    inside.set()
                    while True: time.sleep(0.001)
                session.on("OnAuthorized", stay)
                session.Connect(False)
                quorix.run()
            inside = threading.Event()
            threading.Thread(target=inside_an_event, daemon=True).start()
            threading.Thread(target=quorix.run, daemon=True).start()
            inside.wait()
            class Slow:
                def __del__(self, sleep=time.sleep): sleep(0.1)
            sys.path.append(Slow())
            sys.path.append(session)
            print("end")
        """)
        ended = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=60, check=False,
                               cwd=sys.path[0])
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, "end\n", ""))


if __name__ == "__main__":
    unittest.main()
