"""Logs in and answers every message with its own text, until the connection ends.

    python bot.py HOST PORT USER PASSWORD      needs pywin32 (pip install pywin32)
"""
import sys
import time

import pythoncom
import win32com.client

LOGIN_SECONDS = 30
MSG_CHAT, MSG_GROUPCHAT = 1, 3


class Events:
    logged_in = False
    over = None

    def OnAuthorized(self):
        Events.logged_in = True
        print("Logged in as", self.MyJid)
        self.SendMyPresence()

    def OnMessage(self, message):
        message = win32com.client.Dispatch(message)
        if message.MSG_Type != MSG_GROUPCHAT and message.Body:
            print(f"{message.FromJid}: {message.Body}")
            answer = self.CreateMessage(message.FromJid, MSG_CHAT, "You said: " + message.Body, "")
            answer.SendMessage()

    def OnIQError(self, element, sender, code, description):
        if not Events.logged_in:
            Events.over = f"The login was refused: {code} {description}"

    def OnSocketError(self, element, description, code):
        Events.over = f"No connection: {description}"

    def OnDisConnected(self):
        Events.over = Events.over or "The connection has ended."


def main(host, port, user, password):
    session = win32com.client.DispatchWithEvents("Quorix.cSession", Events)
    port = int(port)
    session.ServerAddress = host
    session.Port = port - 65536 if port > 32767 else port
    session.username = user
    session.Password = password
    session.Resource = "bot"
    session.Reconnect = False
    session.Connect(False)
    deadline = time.monotonic() + LOGIN_SECONDS
    while not Events.over:
        pythoncom.PumpWaitingMessages()
        time.sleep(0.05)
        if not Events.logged_in and time.monotonic() > deadline:
            Events.over = f"Nothing came of the login within {LOGIN_SECONDS} s."
    sys.exit(Events.over)


main(*sys.argv[1:])
