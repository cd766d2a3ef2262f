' Registers an account, logs in, writes to itself, and ends with the number of failures. Argument: the port.
Option Explicit

Dim failures, authorized, ended, greeting, kind, flag, contact, text
failures = 0
authorized = False
ended = 0

Sub Check(what, found, expected)
    If CStr(found) <> CStr(expected) Then
        failures = failures + 1
        WScript.Echo what & ": " & found & " instead of " & expected
    End If
End Sub

Sub session_OnAuthorized()
    authorized = True
End Sub

Sub session_OnDisConnected()
    ended = ended + 1
End Sub

Sub session_OnMessage(message)
    greeting = message.Body
    contact = message.FromJid
End Sub

Sub session_OnMessageEvent(noBody, eventKind, fromJid)
    flag = noBody
    kind = eventKind + 0
End Sub

Sub session_OnOutgoingXML(xml)
    text = xml
End Sub

Dim session, turns
Set session = WScript.CreateObject("Quorix.cSession", "session_")
session.ServerAddress = "localhost"
session.Port = WScript.Arguments(0)
session.username = "vbscript"
session.Password = "secret"
session.Resource = "script"
session.KeepAlive = False
session.Socket.TimeOut = 60000
session.Connect True
For turns = 1 To 600
    If Not authorized Then WScript.Sleep 100
Next
Check "logged in", authorized, True
Check "Active", session.Active, True
Check "Port", session.Port, CInt(WScript.Arguments(0))

Dim message
Set message = session.CreateMessage(session.MyJid & "/script", 1, "Hello ä", "")
message.AddEvent 1
message.SendMessage
Check "sent", InStr(text, "<message") > 0, True
For turns = 1 To 600
    If IsEmpty(kind) Then WScript.Sleep 100
Next
Check "received", greeting, "Hello ä"
Check "from", contact, "vbscript@localhost/script"
Check "event kind", kind, 1
Check "event flag", flag, False

' Collections: by position, by For Each, and an error that the script catches.
Dim fields, field, names
Set fields = session.SearchFields
fields.Add "first", "1"
fields.Add "last", "2", "key"
For Each field In fields
    names = names & field.FieldName & " "
Next
Check "For Each", names, "first last "
Check "by position", session.SearchFields(2).FieldName, "last"
Check "by key", fields("key").FieldData, "2"
On Error Resume Next
fields.Item 3
Check "error number", Err.Number, 9
On Error GoTo 0

Dim node, part
Set node = WScript.CreateObject("Quorix.cXML_Node")
node.xml = "<a b='c'><d>e</d></a>"
Set part = node.getNode("//d")
part.text = "f"
Check "live node", node.xml, "<a b=""c""><d>f</d></a>"
Check "no node", node.getNode("//none") Is Nothing, True

session.Disconnect
Check "OnDisConnected", ended > 0, True
WScript.Echo "vbscript: " & failures & " failures"
WScript.Quit failures
