"""A server on loopback that logs anybody in and says what a test wants."""
import re
import socket
import threading


class Server:
    """Sends back each message; `script` is sent behind a login."""

    def __init__(self, script=b""):
        self.script = script
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self._accept, daemon=True).start()

    def _accept(self):
        while True:
            try:
                connection = self.listener.accept()[0]
            except OSError:
                return
            threading.Thread(target=self._serve, args=(connection,), daemon=True).start()

    def _serve(self, connection):
        with connection:
            while data := connection.recv(65536):
                if b"<stream:stream" in data:
                    connection.sendall(b"<stream:stream id='1' from='s' xmlns='jabber:client'"
                                       b" xmlns:stream='http://etherx.jabber.org/streams'>")
                if found := re.search(rb"<iq [^>]*id=['\"]([^'\"]*)['\"][^>]*><query xmlns=['\"]jabber:iq:auth", data):
                    if b"type='get'" in data or b'type="get"' in data:
                        connection.sendall(b"<iq type='result' id='%b'><query xmlns='jabber:iq:auth'><username/>"
                                           b"<digest/><resource/></query></iq>" % found[1])
                    else:
                        connection.sendall(b"<iq type='result' id='%b'/>%b" % (found[1], self.script))
                for message in re.findall(rb"<message .*?</message>", data):
                    connection.sendall(message)

    def close(self):
        self.listener.close()
