#!/usr/bin/python3
"""The echo bot on slixmpp, as a component: its stream needs neither TLS nor SASL. slixmpp_bot.py HOST PORT"""
import sys

import slixmpp


def echo(message):
    if message["body"] and message["type"] != "groupchat":
        bot.make_message(mto=message["from"], mbody=message["body"], mtype=message["type"]).send()


bot = slixmpp.ComponentXMPP("localhost", "secret", sys.argv[1], int(sys.argv[2]))
bot.add_event_handler("message", echo)
bot.connect()
bot.process(forever=True)
