#include "apps/console/Event.h"

#include <algorithm>
#include <stdexcept>

#include "quorix/base/WireText.h"

namespace quorix::console {

namespace {

using enum EventKind;

constexpr EventForm kForms[] = {
    // The connection
    {"connecting", notice, "Connecting to {host} ...", "a connection is opened"},
    {"certificate", notice,
     "TLS {cipher}; certificate of {subject}, issued by {issuer}: {verdict}; SHA-256 {fingerprint}",
     "whom TLS has found at the other end"},
    {"login", notice, "Logged in as {jid}.", "the session is ready"},
    {"disconnected", notice, "Disconnected: {reason}.", "the connection has ended"},
    {"attempt-failed", notice, "Still not connected: {reason}.", "an attempt to connect again"},
    {"xml-in", data, "<< {xml}", "received, with --xml; secrets are masked"},
    {"xml-out", data, ">> {xml}", "sent, with --xml; secrets are masked"},
    // The program
    {"error", error, "! {what}: {reason}",
     "something did not work; code and condition as the server gave them"},
    {"usage", error, "! {text}", "a command that cannot be carried out as typed"},
    {"notice", notice, "{text}", "the program's own words"},
    {"echo", echo, "> {text}", "a command as typed, without its secrets"},
    {"help-group", list, "{name}:", "a group of commands follows"},
    {"help", list, "{usage} {help}", "one command"},
    {"chat", list, "{number} {jid}{_unread}{_current}", "an open chat and how many messages wait in it"},
    // Messages
    {"message", data, "{from}: {text}{_more}", "somebody wrote; type is chat, groupchat, normal or headline"},
    {"sent", echo, "me to {to}: {text}", "a message has gone out"},
    {"typing", data, "* {from} is typing", "somebody types an answer"},
    {"stopped", data, "* {from} has stopped typing", "... and has stopped"},
    {"displayed", data, "* {from} has seen your message", "a message was shown"},
    {"delivered", data, "* your message has reached {from}", "a message has arrived"},
    {"stored", data, "* your message waits for {from}", "a message waits on the server"},
    // Presence and contacts
    {"presence", data, "* {_who} is {show} {status}", "somebody has come, gone or changed"},
    {"where", list, "  {resource}: {show}, priority {priority} {status}", "where a contact is online"},
    {"subscription-request", data, "* {jid} wants to see you (/accept {jid} or /deny {jid}) {text}",
     "somebody asks to see when you are there"},
    {"subscription-ended", data, "* {jid} no longer wants to see you", "... and no longer does"},
    {"subscription-accepted", data, "* {jid} lets you see when it is there {text}",
     "your request was granted"},
    {"subscription-denied", data, "* {jid} does not let you see when it is there {text}", "... or refused"},
    {"contact", list, "{_mark} {name} <{jid}> {show}{_groups}{_sight}",
     "a contact of the list, or a change of it"},
    {"contacts", notice, "Contacts: {count} (/roster lists them).", "the list has arrived"},
    {"contact-received", data, "* {from} sends you a contact: /add {jid} {name}",
     "somebody recommends a contact"},
    // The account
    {"account-created", notice, "Account created; logging in with it.", "a new account"},
    {"password-changed", data, "Password changed.", "the server has taken the new password"},
    {"account-removed", data, "Account removed.", "the account is gone"},
    // Rooms
    {"room", list, "room {jid} \"{name}\"{_private}", "a room of a server"},
    {"no-rooms", data, "no rooms", "a server without rooms"},
    {"look", list, "in {jid}:", "who is in a room follows"},
    {"room-entry", list, "  {name} <{jid}>", "somebody or something in a room"},
    {"joined", data, "* you are in {room} as {nick}", "a room has let you in"},
    {"left", data, "* you have left {room}", "you are no longer in a room"},
    {"invitation", data, "* {from} invites you to {room} {text}", "an invitation (/join {room} NICK)"},
    // Services
    {"agent", list, "agent {jid} \"{name}\"{_abilities}", "a service of the server"},
    {"agents", list, "agents: {count}", "how many there are"},
    {"gateway", data, "gateway asks for: {text}", "what a gateway wants to know"},
    {"field", list, "  {name} = {value}", "one line of a form or a card"},
    {"form-field", list, "  {name} {label}", "a field to fill"},
    {"hit", list, "found {jid}{_values}", "somebody that a search has found"},
    {"no-hits", data, "Nobody was found.", "a search without a result"},
    {"card", list, "card of {jid}", "a business card; its fields follow"},
    {"no-card", data, "{jid} has no card", "an empty business card"},
    // Questions and offers
    {"version", data, "{from} runs {name} {version} {os}", "the answer to /version"},
    {"time", data, "time at {from}: {_both}", "the answer to /time"},
    {"last", data, "{from} has been idle for {seconds} s", "the answer to /last"},
    {"offer", data, "{from} offers {url} ({text})", "a file at an address"},
    {"offer-fetched", data, "{from} has fetched the offer", "your offer was taken"},
    {"offer-refused", data, "{from} did not take the offer", "... or not"},
    {"private", data, "stored: {xml}", "what the server keeps for you"},
};

}  // namespace

Field::Field(const char* fieldName, StringView text) : name(fieldName), value(Utf8FromText(text)) {}

std::span<const EventForm> EventForms() { return kForms; }

const EventForm& FormOf(std::string_view name) {
    const auto* found = std::find_if(std::begin(kForms), std::end(kForms),
                                     [name](const EventForm& form) { return form.name == name; });
    if (found == std::end(kForms)) throw std::logic_error("No event " + std::string(name));
    return *found;
}

}  // namespace quorix::console
