' Logs in and answers every message with its own text, until the connection ends.
'
'   cscript //nologo bot.vbs HOST PORT USER PASSWORD [SECONDS] [create]
'
' With SECONDS it leaves after that time; with "create" it makes the account first. The exit code is 0 when it was
' logged in and left on purpose, otherwise 1.
Option Explicit

Const KV_Available = 0, MSG_Chat = 1, MSG_GroupChat = 3, LoginSeconds = 30
Dim session, loggedIn, over, patience, create
loggedIn = False
over = False

' Port holds 16 bits with a sign.
Function PortValue(number)
    PortValue = number
    If number > 32767 Then PortValue = number - 65536
End Function

Sub Fail(reason)
    WScript.Echo reason
    over = True
End Sub

Sub session_OnAuthorized()
    loggedIn = True
    WScript.Echo "Logged in as " & session.MyJid
    session.SendMyPresence
End Sub

Sub session_OnMessage(message)
    If message.MSG_Type = MSG_GroupChat Or message.Body = "" Then Exit Sub
    WScript.Echo message.FromJid & ": " & message.Body
    session.CreateMessage(message.FromJid, MSG_Chat, "You said: " & message.Body, "").SendMessage
End Sub

Sub session_OnIQError(element, fromJid, code, description)
    If Not loggedIn Then Fail "The login was refused: " & code & " " & description
End Sub

Sub session_OnSocketError(element, description, code)
    Fail "No connection: " & description
End Sub

Sub session_OnError(element, fromJid, code, description)
    WScript.Echo "Error " & code & " from " & fromJid & ": " & description
End Sub

' A new account ends its first connection; the session logs in with it on another.
Sub session_OnDisConnected()
    If loggedIn Then Fail "The connection has ended."
End Sub

patience = -1
create = False
If WScript.Arguments.Count > 4 Then patience = CLng(WScript.Arguments(4)) * 10
If WScript.Arguments.Count > 5 Then create = (WScript.Arguments(5) = "create")

Set session = WScript.CreateObject("Quorix.cSession", "session_")
session.ServerAddress = WScript.Arguments(0)
session.Port = PortValue(CLng(WScript.Arguments(1)))
session.username = WScript.Arguments(2)
session.Password = WScript.Arguments(3)
session.Resource = "bot"
session.Reconnect = False
session.Connect create

Dim waited
waited = 0
Do Until over
    WScript.Sleep 100
    waited = waited + 1
    If Not loggedIn And waited > LoginSeconds * 10 Then Fail "Nothing came of the login within " & LoginSeconds & " s."
    If loggedIn And patience >= 0 And waited > patience Then Exit Do
Loop
If over Then
    WScript.Quit 1
Else
    session.Disconnect
End If
