// Registers an account, logs in, writes to itself, and ends with the number of failures. Argument: the port.
var failures = 0, authorized = false, ended = 0, greeting, contact, kind, flag, presence;

function check(what, found, expected) {
    if (found !== expected) {
        ++failures;
        WScript.Echo(what + ": " + found + " instead of " + expected);
    }
}
function waitFor(condition) {
    for (var turns = 0; turns < 600 && !condition(); ++turns) WScript.Sleep(100);
    return condition();
}

function session_OnAuthorized() { authorized = true; }
function session_OnDisConnected() { ++ended; }
function session_OnMessage(message) {
    greeting = message.Body;
    contact = message.FromJid;
}
function session_OnMessageEvent(noBody, eventKind, fromJid) {
    flag = noBody;
    kind = eventKind;
}
function session_OnPresence(item, available, showType, itemType, node) {
    presence = item.Status + " " + available + " " + showType + " " + itemType + " " + node.GetNamespace();
}

var session = WScript.CreateObject("Quorix.cSession", "session_");
session.ServerAddress = "localhost";
session.Port = WScript.Arguments(0);
session.username = "jscript";
session.Password = "secret";
session.Resource = "script";
session.KeepAlive = false;
session.Socket.TimeOut = 60000;
session.Connect(true);
check("logged in", waitFor(function () { return authorized; }), true);

session.Status = "here";
session.ShowType = 2;
session.SendMyPresence();
check("presence", waitFor(function () { return presence !== undefined; }), true);
check("presence", presence, "here true 2 3 presence");

var message = session.CreateMessage(session.MyJid + "/script", 1, "Hello \u00e4", "");
message.AddEvent(1);
message.SendMessage();
check("received", waitFor(function () { return kind !== undefined; }), true);
check("text", greeting, "Hello \u00e4");
check("from", contact, "jscript@localhost/script");
check("event kind", kind, 1);
check("event flag", flag, false);

var fields = session.SearchFields, names = "";
fields.Add("first", "1");
fields.Add("last", "2", "key");
for (var all = new Enumerator(fields); !all.atEnd(); all.moveNext()) names += all.item().FieldName + " ";
check("Enumerator", names, "first last ");
check("by position", session.SearchFields(2).FieldName, "last");
try {
    fields.Item(3);
    check("error", "none", "one");
} catch (error) {
    check("error number", error.number & 0xFFFF, 9);
}

var node = WScript.CreateObject("Quorix.cXML_Node");
node.xml = "<a b='c'><d>e</d></a>";
node.getNode("//d").text = "f";
check("live node", node.xml, '<a b="c"><d>f</d></a>');
check("no node", node.getNode("//none"), null);
check("attribute", node.getNode("/a").getAttribute("b"), "c");

session.Disconnect();
check("OnDisConnected", ended > 0, true);
WScript.Echo("jscript: " + failures + " failures");
WScript.Quit(failures);
