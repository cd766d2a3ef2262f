"""What a session is to Python besides its members: handlers, and coroutines."""
import asyncio
from inspect import Parameter, Signature

from . import _quorix

_EVENTS = {name: rest for name, *rest in next(t for t in _quorix._tables() if t[0] == "cSession")[4]}


def _nothing(name, parameters, help):
    def event(self, *arguments):
        pass

    event.__name__ = name
    event.__qualname__ = f"SessionEvents.{name}"
    event.__doc__ = help
    event.__signature__ = Signature(
        [Parameter(name, Parameter.POSITIONAL_OR_KEYWORD) for name in ("self", *(p[0] for p in parameters))])
    return event


class SessionEvents:
    """What a session tells. Override the events to hear, and hand an object to Advise."""

    for _name, _rest in _EVENTS.items():
        vars()[_name] = _nothing(_name, *_rest)
    del _name, _rest


class SessionError(Exception):
    """A login that failed: a text, and the code of OnError or the number of OnSocketError."""

    def __init__(self, text, code=0):
        super().__init__(text or f"Error {code}")
        self.code = code


def host():
    """Lets the running asyncio loop deliver the events of this thread."""
    asyncio.get_running_loop().add_reader(_quorix.descriptor(), _quorix.dispatch)


class cSession(_quorix.cSession):
    __doc__ = _quorix.cSession.__doc__
    __slots__ = ()

    def __init__(self, **properties):
        self.Mode = _quorix.KV_Modern
        super().__init__(**properties)

    def on(self, event, handler=None):
        """Calls `handler` with the arguments of each event of that name. Without one, for use as a decorator."""
        if handler is None:
            return lambda decorated: self.on(event, decorated)
        self._on(event, handler)
        return handler

    def off(self, event, handler):
        """Calls it no longer. ValueError when it is not called."""
        self._off(event, handler)

    def Advise(self, sink):
        """Calls the methods of `sink` that override those of SessionEvents, until Unadvise."""
        for event, method in _overridden(sink):
            self._on(event, method)

    def Unadvise(self, sink):
        """Calls them no longer. ValueError when they are not called."""
        for event, method in _overridden(sink):
            self._off(event, method)

    async def login(self):
        """Connects, and returns when the server has accepted the login. SessionError when it has not."""
        host()
        answer = asyncio.get_running_loop().create_future()

        def fail(text, code=0):
            if not answer.done():
                answer.set_exception(SessionError(text, code))

        handlers = {
            "OnAuthorized": lambda: answer.done() or answer.set_result(None),
            "OnError": lambda node, sender, code, text: fail(text, code),
            "OnSocketError": lambda node, text, code: fail(text, code),
            "OnDisConnected": lambda: fail("The connection has ended"),
        }
        for event, handler in handlers.items():
            self._on(event, handler)
        try:
            self.Connect(False)
            await answer
        except BaseException:
            self.Disconnect()  # no attempt follows
            raise
        finally:
            for event, handler in handlers.items():
                self._off(event, handler)

    def messages(self):
        """The messages that arrive from now on, to iterate over with `async for`, until the connection ends."""
        host()
        arrived = asyncio.Queue()
        handlers = {"OnMessage": arrived.put_nowait, "OnDisConnected": lambda: arrived.put_nowait(None)}
        for event, handler in handlers.items():
            self._on(event, handler)
        return _each(self, arrived, handlers)


async def _each(session, arrived, handlers):
    try:
        while message := await arrived.get():
            yield message
    finally:
        for event, handler in handlers.items():
            session._off(event, handler)


def _overridden(sink):
    for event in _EVENTS:
        method = getattr(sink, event, None)
        if method is not None and getattr(method, "__func__", method) is not getattr(SessionEvents, event):
            yield event, method
