#!/usr/bin/python3
"""Answers each message with its own text. echo_bot.py HOST PORT USER PASSWORD"""
import sys

import quorix

host, port, user, password = sys.argv[1:]
session = quorix.cSession(ServerAddress=host, Port=int(port), username=user, Password=password, Resource="bot")


@session.on("OnMessage")
def echo(message: quorix.cMessage) -> None:
    if message.Body and message.MSG_Type != quorix.MSG_GroupChat:
        session.CreateMessage(message.FromJid, message.MSG_Type, message.Body, "").SendMessage()


session.on("OnAuthorized", session.SendMyPresence)
session.on("OnSocketError", lambda node, text, number: print(text, flush=True))
session.on("OnError", lambda node, sender, code, text: print(sender, code, text, flush=True))
session.Connect(False)
quorix.run()
