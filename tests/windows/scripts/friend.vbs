' Asks a bot of the samples until it answers, then tells it to quit. Arguments: the port, the bot's account. Ends with 0
' when it has answered.
Option Explicit

Dim session, authorized, answer, turns
authorized = False

Sub session_OnAuthorized()
    authorized = True
End Sub

Sub session_OnMessage(message)
    answer = message.Body
End Sub

Sub Tell(text)
    session.CreateMessage(WScript.Arguments(1) & "@localhost", 1, text, "").SendMessage
End Sub

Set session = WScript.CreateObject("Quorix.cSession", "session_")
session.ServerAddress = "localhost"
session.Port = WScript.Arguments(0)
session.username = "asks-" & WScript.Arguments(1)
session.Password = "secret"
session.Resource = "home"
session.Connect True
For turns = 1 To 450
    If authorized And answer = "" And turns Mod 10 = 0 Then Tell "Hello"
    If answer = "" Then WScript.Sleep 100
Next
WScript.Echo "It says: " & answer
Tell "quit"
WScript.Sleep 500
session.Disconnect
If answer = "You said: Hello" Then WScript.Quit 0 Else WScript.Quit 1
