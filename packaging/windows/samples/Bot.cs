// The same as bot.vbs, in C#. Build it with the compiler that comes with Windows:
//
//   %SystemRoot%\Microsoft.NET\Framework64\v4.0.30319\csc Bot.cs Sink.cs
//   Bot HOST PORT USER PASSWORD
using System;
using System.Windows.Forms;

public static class Bot
{
    private const int Modern = 1, Chat = 1, GroupChat = 3, CodeTimeout = 408;

    private static dynamic session;
    private static bool loggedIn;
    private static int result;

    [STAThread]  // the session lives in this thread and gets its notifications through its messages
    public static int Main(string[] arguments)
    {
        session = Activator.CreateInstance(Type.GetTypeFromProgID("Quorix.cSession", true));
        using (var sink = new Sink(session))
        {
            sink.Authorized += OnAuthorized;
            sink.Disconnected += () => loggedIn = false;
            sink.RosterEnd += OnRosterEnd;
            sink.Message += OnMessage;
            sink.Error += OnError;
            sink.SocketError += (why, code) => Console.WriteLine("Connection: " + why);

            session.Mode = Modern;
            session.ServerAddress = arguments[0];
            session.Port = unchecked((short)ushort.Parse(arguments[1]));  // 16 bits with a sign
            session.username = arguments[2];
            session.Password = arguments[3];
            session.Resource = "bot";
            session.LoginTimeout = 20;
            session.ReconnectInterval = 5;
            session.Connect(false);
            Application.Run();
            session.Disconnect();
        }
        return result;
    }

    private static void Finish(int code)
    {
        result = code;
        Application.ExitThread();
    }

    private static void OnAuthorized()
    {
        loggedIn = true;
        Console.WriteLine("Logged in as " + session.MyJid);
        session.FetchRoster();
        session.SendMyPresence();
    }

    private static void OnRosterEnd()
    {
        foreach (dynamic contact in session.Roster) Console.WriteLine("Contact " + contact.JID + " " + contact.NickName);
    }

    private static void OnMessage(dynamic message)
    {
        if (message.MSG_Type == GroupChat || message.Body == "") return;
        Console.WriteLine(message.FromJid + ": " + message.Body);
        if (message.Body == "quit") Finish(0);
        else session.CreateMessage(message.FromJid, Chat, "You said: " + message.Body, "").SendMessage();
    }

    private static void OnError(string from, int code, string why)
    {
        Console.WriteLine("Error " + code + " from " + from + ": " + why);
        bool refused = !loggedIn && code != CodeTimeout;
        if (from == session.ServerAddress && (refused || why.StartsWith("conflict"))) Finish(1);
    }
}
