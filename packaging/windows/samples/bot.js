// The same as bot.vbs, in JScript, with events that are connected after the object is made.
//
//   cscript //nologo bot.js HOST PORT USER PASSWORD [create]
var KV_Modern = 1, KV_PlainAuth = 3, MSG_Chat = 1, MSG_GroupChat = 3, CODE_Timeout = 408;
var loggedIn = false, result = -1;

// Port holds 16 bits with a sign: 40000 is 40000 - 65536.
function portValue(number) { return number > 32767 ? number - 65536 : number; }

function session_OnAuthorized() {
    loggedIn = true;
    WScript.Echo("Logged in as " + session.MyJid);
    session.FetchRoster();
    session.SendMyPresence();
}

function session_OnRosterEnd() {
    for (var all = new Enumerator(session.Roster); !all.atEnd(); all.moveNext()) {
        WScript.Echo("Contact " + all.item().JID + " " + all.item().NickName);
    }
}

function session_OnMessage(message) {
    if (message.MSG_Type === MSG_GroupChat || message.Body === "") return;
    WScript.Echo(message.FromJid + ": " + message.Body);
    if (message.Body === "quit") {
        result = 0;
        return;
    }
    session.CreateMessage(message.FromJid, MSG_Chat, "You said: " + message.Body, "").SendMessage();
}

function session_OnError(element, fromJid, code, description) {
    WScript.Echo("Error " + code + " from " + fromJid + ": " + description);
    if (fromJid !== session.ServerAddress) return;
    if (description.indexOf("conflict") === 0 || (!loggedIn && code !== CODE_Timeout)) result = 1;
}

function session_OnSocketError(element, description, code) { WScript.Echo("Connection: " + description); }
function session_OnDisConnected() { loggedIn = false; }

// ConnectObject works for any object that has events, however the script came by it.
var session = WScript.CreateObject("Quorix.cSession");
WScript.ConnectObject(session, "session_");
session.Mode = KV_Modern;
session.ServerAddress = WScript.Arguments(0);
session.Port = portValue(parseInt(WScript.Arguments(1), 10));
session.username = WScript.Arguments(2);
session.Password = WScript.Arguments(3);
session.Resource = "bot";
session.LoginTimeout = 20;
session.ReconnectInterval = 5;
var create = WScript.Arguments.Count() > 4;
if (create) session.AuthType = KV_PlainAuth; // without TLS, the password of a new account goes out in the clear
session.Connect(create);
while (result < 0) WScript.Sleep(100);
session.Disconnect();
WScript.Quit(result);
