' Logs in, shows the contacts, and answers every message with its own text. Comes back by itself when the connection is
' lost; says why and ends with 1 when the login is refused. Who writes "quit" to it ends it with 0.
'
'   cscript //nologo bot.vbs HOST PORT USER PASSWORD [create]
'
' With "create" it makes the account first.
Option Explicit

Const KV_Modern = 1, KV_PlainAuth = 3, MSG_Chat = 1, MSG_GroupChat = 3, CODE_Timeout = 408
Dim session, loggedIn, result
loggedIn = False
result = -1

' Port holds 16 bits with a sign: 40000 is 40000 - 65536.
Function PortValue(number)
    PortValue = number
    If number > 32767 Then PortValue = number - 65536
End Function

Sub session_OnAuthorized()
    loggedIn = True
    WScript.Echo "Logged in as " & session.MyJid
    session.FetchRoster
    session.SendMyPresence
End Sub

Sub session_OnRosterEnd()
    Dim contact
    For Each contact In session.Roster
        WScript.Echo "Contact " & contact.JID & " " & contact.NickName
    Next
End Sub

Sub session_OnMessage(message)
    If message.MSG_Type = MSG_GroupChat Or message.Body = "" Then Exit Sub
    WScript.Echo message.FromJid & ": " & message.Body
    If message.Body = "quit" Then
        result = 0
    Else
        session.CreateMessage(message.FromJid, MSG_Chat, "You said: " & message.Body, "").SendMessage
    End If
End Sub

' The session itself is named by its server. It does not come back after a refusal, nor when another login with the same
' resource takes over.
Sub session_OnError(element, fromJid, code, description)
    WScript.Echo "Error " & code & " from " & fromJid & ": " & description
    If fromJid <> session.ServerAddress Then Exit Sub
    If Left(description, 8) = "conflict" Or (Not loggedIn And code <> CODE_Timeout) Then result = 1
End Sub

Sub session_OnSocketError(element, description, code)
    WScript.Echo "Connection: " & description
End Sub

Sub session_OnDisConnected()
    loggedIn = False
End Sub

Set session = WScript.CreateObject("Quorix.cSession", "session_")
session.Mode = KV_Modern
session.ServerAddress = WScript.Arguments(0)
session.Port = PortValue(CLng(WScript.Arguments(1)))
session.username = WScript.Arguments(2)
session.Password = WScript.Arguments(3)
session.Resource = "bot"
session.LoginTimeout = 20
session.ReconnectInterval = 5
If WScript.Arguments.Count > 4 Then
    session.AuthType = KV_PlainAuth ' without TLS, the password of a new account goes out in the clear
    session.Connect True
Else
    session.Connect False
End If

' Events come while the script sleeps.
Do While result < 0
    WScript.Sleep 100
Loop
session.Disconnect
WScript.Quit result
