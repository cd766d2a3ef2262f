// What .NET needs to hear the session's events: the event interface, as far as it is of interest, and an object that
// passes them on. The numbers and arguments are those of the type library.
using System;
using System.Runtime.InteropServices;
using System.Runtime.InteropServices.ComTypes;

[ComVisible(true), Guid("83ab0c1e-4dbf-439f-9e83-bc134dccef77"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
public interface ISessionEvents
{
    [DispId(1)] void OnAuthorized();
    [DispId(6)] void OnError([MarshalAs(UnmanagedType.IDispatch)] object element, string from, short code, string why);
    [DispId(7)] void OnSocketError([MarshalAs(UnmanagedType.IDispatch)] object element, string why, short code);
    [DispId(8)] void OnDisConnected();
    [DispId(9)] void OnMessage([MarshalAs(UnmanagedType.IDispatch)] object message);
    [DispId(13)] void OnRosterEnd();
}

// Connected to a session as long as it lives or until Dispose. Events without a handler are passed over.
[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public class Sink : ISessionEvents, IDisposable
{
    public event Action Authorized, Disconnected, RosterEnd;
    public event Action<object> Message;
    public event Action<string, int, string> Error;
    public event Action<string, int> SocketError;

    private IConnectionPoint point;
    private readonly int cookie;

    public Sink(object session)
    {
        Guid events = typeof(ISessionEvents).GUID;
        ((IConnectionPointContainer)session).FindConnectionPoint(ref events, out point);
        point.Advise(this, out cookie);
    }

    public void Dispose()
    {
        if (point != null) point.Unadvise(cookie);
        point = null;
    }

    public void OnAuthorized() { if (Authorized != null) Authorized(); }
    public void OnDisConnected() { if (Disconnected != null) Disconnected(); }
    public void OnRosterEnd() { if (RosterEnd != null) RosterEnd(); }
    public void OnMessage(object message) { if (Message != null) Message(message); }
    public void OnError(object element, string from, short code, string why) { if (Error != null) Error(from, code, why); }
    public void OnSocketError(object element, string why, short code) { if (SocketError != null) SocketError(why, code); }
}
