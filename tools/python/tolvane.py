"""Controls a running unit of Tolvane from Python, over its control socket.

    import tolvane

    with tolvane.Unit() as unit:
        unit.wait("button 'Power On'")
        unit.do("tap 'Power On'")
        for event in unit.watch("frames"):
            print(event["time"], event["text"])

Every command of `unitctl help` works with `do`, and every line of a scenario with `run`. Only the
standard library is needed. A Unit is for one thread; several can be connected to one unit.
"""

from __future__ import annotations

import contextlib
import json
import os
import socket
import stat
from collections.abc import Iterable, Iterator
from typing import Any

__all__ = ["Failed", "NotRunning", "Unit", "WrongUsage"]


class Failed(Exception):
    """The unit refused the command, or it failed; the text says why."""


class WrongUsage(Failed):
    """The words are no command; the text says what is wrong and what is allowed."""


class NotRunning(Failed):
    """No unit of that name is running, or it ended."""


def _folder() -> str:
    """Where the sockets of the user's units are."""
    session = os.environ.get("XDG_RUNTIME_DIR", "")
    try:
        status = os.stat(session) if session.startswith("/") else None
    except OSError:
        status = None
    if status and stat.S_ISDIR(status.st_mode) and status.st_uid == os.geteuid():
        return os.path.join(session, "tolvane")
    return f"/tmp/tolvane-{os.geteuid()}"


class Unit:
    """A connection to the unit of that name. `timeout` is in seconds, for each line of a reply."""

    def __init__(self, name: str = "unit", timeout: float | None = 60) -> None:
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._socket.settimeout(timeout)
        path = os.path.join(_folder(), name + ".sock")
        try:
            self._socket.connect(path)
        except OSError as error:
            self._socket.close()
            raise NotRunning(f"no unit is running as '{name}' ({path}: {error.strerror})") from error
        self._lines = self._socket.makefile("r", encoding="utf-8", newline="\n")

    def __enter__(self) -> Unit:
        return self

    def __exit__(self, *exception: object) -> None:
        self.close()

    def close(self) -> None:
        """Hangs up, which also ends a watch or a scenario of this connection."""
        self._lines.close()
        self._socket.close()

    def do(self, command: str) -> str:
        """Executes a command and returns its output. Raises Failed."""
        self._send(command)
        return "\n".join(self._reply())

    def state(self) -> dict[str, Any]:
        """The complete state of the unit, as `unitctl state` prints it."""
        return json.loads(self.do("state"))

    def run(self, lines: str | Iterable[str]) -> str:
        """Runs lines of a scenario to their end and returns what they print. Raises Failed."""
        text = lines if isinstance(lines, str) else "\n".join(lines)
        self._send("run", text)
        with self._without_limit():
            return "\n".join(self._reply())

    def wait(self, condition: str) -> None:
        """Waits as a scenario does: `wait("button Next within 5s")`. Raises Failed at its limit."""
        self._send(f"wait {condition}")
        with self._without_limit():
            list(self._reply())

    def expect(self, condition: str) -> None:
        """Checks as a scenario does: `expect("no text Error for 2s")`. Raises Failed."""
        self._send(f"expect {condition}")
        with self._without_limit():
            list(self._reply())

    def pause(self) -> None:
        """Stops the unit's time; `resume` lets it pass again."""
        self.do("clock pause")

    def resume(self) -> None:
        self.do("clock resume")

    def step(self) -> str:
        """Lets time pass until the next event and stop there; returns the event as a trace record."""
        self._send("clock step")
        with self._without_limit():
            return "\n".join(self._reply())

    def quit(self) -> None:
        """Ends the unit, as SIGTERM does."""
        self.do("quit")

    def watch(self, kinds: str = "") -> Iterator[dict[str, Any]]:
        """Events from now on: frames, broadcasts, log or all; by default frames and broadcasts.

        Each has `time`, `kind` and `text`, a frame also its parts. Only the end of the connection ends
        a watch: use a Unit of its own for it.
        """
        self._send(f"watch {kinds} --json")
        self._socket.settimeout(None)
        return (json.loads(line) for line in self._reply())

    @contextlib.contextmanager
    def _without_limit(self) -> Iterator[None]:
        limit = self._socket.gettimeout()
        self._socket.settimeout(None)
        try:
            yield
        finally:
            self._socket.settimeout(limit)

    def _send(self, line: str, text: str = "") -> None:
        parts = "".join(f"|{part}\n" for part in text.splitlines())
        try:
            self._socket.sendall(f"@{os.getcwd()}\n{parts}{line}\n".encode())
        except OSError as error:
            raise NotRunning(str(error)) from error

    def _received(self) -> Iterator[str]:
        try:
            # Not `yield from`, which would close the file with this generator.
            for line in self._lines:
                yield line
        except OSError as error:
            raise NotRunning(str(error)) from error

    def _reply(self) -> Iterator[str]:
        problem = ""
        for line in self._received():
            mark, rest = line[:1], line[1:].rstrip("\n")
            if mark == "|":
                yield rest
            elif mark == "+":
                return
            elif mark == "~":
                problem += rest + "\n"
            elif mark == "-":
                raise Failed(problem + rest)
            elif mark == "?":
                raise WrongUsage(problem + rest)
            elif mark == "!":
                raise Failed(f"{rest} lines were lost: the reader is too slow")
        raise NotRunning("the unit has hung up")
