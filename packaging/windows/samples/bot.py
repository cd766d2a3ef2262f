"""The same as bot.vbs, in Python.

    python bot.py HOST PORT USER PASSWORD      needs pywin32 (pip install pywin32)
"""
import sys
import time

import pythoncom
import win32com.client

KV_MODERN, MSG_CHAT, MSG_GROUPCHAT, CODE_TIMEOUT = 1, 1, 3, 408


class Events:
    """Its methods are called by their names; `self` is the session too."""

    logged_in = False
    result = None

    def OnAuthorized(self):
        Events.logged_in = True
        print("Logged in as", self.MyJid)
        self.FetchRoster()
        self.SendMyPresence()

    def OnRosterEnd(self):
        for contact in self.Roster:
            print("Contact", contact.JID, contact.NickName)

    def OnMessage(self, message):
        message = win32com.client.Dispatch(message)
        if message.MSG_Type == MSG_GROUPCHAT or not message.Body:
            return
        print(f"{message.FromJid}: {message.Body}")
        if message.Body == "quit":
            Events.result = 0
            return
        self.CreateMessage(message.FromJid, MSG_CHAT, "You said: " + message.Body, "").SendMessage()

    def OnError(self, element, sender, code, description):
        print(f"Error {code} from {sender}: {description}")
        refused = not Events.logged_in and code != CODE_TIMEOUT
        if sender == self.ServerAddress and (refused or description.startswith("conflict")):
            Events.result = 1

    def OnSocketError(self, element, description, code):
        print("Connection:", description)

    def OnDisConnected(self):
        Events.logged_in = False


def main(host, port, user, password):
    session = win32com.client.DispatchWithEvents("Quorix.cSession", Events)
    session.Mode = KV_MODERN
    session.ServerAddress = host
    session.Port = int(port) - 65536 if int(port) > 32767 else int(port)  # 16 bits with a sign
    session.username = user
    session.Password = password
    session.Resource = "bot"
    session.LoginTimeout = 20
    session.ReconnectInterval = 5
    session.Connect(False)
    while Events.result is None:
        pythoncom.PumpWaitingMessages()
        time.sleep(0.05)
    session.Disconnect()
    sys.exit(Events.result)


main(*sys.argv[1:])
