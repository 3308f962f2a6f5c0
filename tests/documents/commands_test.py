#!/usr/bin/env python3
"""Runs every command of the three programs that a document shows, as it stands there.

Usage: commands_test.py ROOT FOLDER-OF-THE-COMMANDS. Only what stands for something else is replaced:
FILE by a scenario or a recording, /dev/ttyUSB0 by a pseudo-terminal with a simulated DVR behind it.
"""

import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time

LIMIT = 60  # seconds of the host; a command that takes longer hangs
PROGRAM = re.compile(r"(tolvane|unitctl|dvrsim) ")
# What these wait for is not in a document, so they are interrupted once they have begun.
ENDLESS = re.compile(r"unitctl watch|tolvane --com9|dvrsim (?!--send)|tolvane --headless")
# Shown as an example of a format, or runs what another test runs.
LEFT_OUT = {"tolvane recording 1", "tolvane --auto"}

FIRST_SCENARIO = "first.scenario"


def documents(root):
    yield root / "README.md"
    yield root / "CONTRIBUTING.md"
    yield from sorted((root / "docs").glob("*.md"))


def commands_of(text):
    """The commands in code spans and indented lines, in order; a description after two spaces ends one."""
    for line in text.splitlines():
        if line.startswith("    "):
            spans = [re.split(r" {2,}", line[4:])[0]]
        else:
            spans = re.findall(r"`([^`]+)`", line)
        for span in spans:
            for command in re.split(r"; (?=dvrsim|unitctl)", span):
                if PROGRAM.match(command) and command not in LEFT_OUT:
                    yield command.removesuffix(" ...")


def first_example(text):
    """The first indented block: the example of a scenario."""
    block = re.search(r"(?:^    .*\n)+", text, re.MULTILINE)
    return re.sub(r"^    ", "", block.group(), flags=re.MULTILINE)


class Runner:
    def __init__(self, root, binaries, folder):
        self.root, self.folder, self.failures, self.count = root, folder, [], 0
        self.environment = dict(os.environ, PATH=f"{binaries}:{os.environ['PATH']}",
                                TMPDIR=str(folder), XDG_RUNTIME_DIR=str(folder))
        for variable in ("DISPLAY", "WAYLAND_DISPLAY"):
            self.environment.pop(variable, None)
        self.running = []
        for name in ("tests", "docs", "tools"):
            (folder / name).symlink_to(root / name)

    def start(self, command, wait_for):
        """Starts a command and waits until its output contains the text."""
        output = self.folder / f"output-{self.count}-{len(self.running)}"
        with output.open("w") as file:
            process = subprocess.Popen(["sh", "-c", "exec " + command], cwd=self.folder,
                                       env=self.environment, stdout=file, stderr=subprocess.STDOUT)
        self.running.append(process)
        end = time.monotonic() + LIMIT
        while time.monotonic() < end and process.poll() is None:
            if output.stat().st_size > 0 and wait_for in output.read_text():
                return
            time.sleep(0.02)
        self.fail(command, output.read_text())

    def stop(self, process):
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(timeout=LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            self.fail(process.args[-1], "did not end")
        self.running.remove(process)

    def fail(self, command, why):
        self.failures.append(f"{command}\n    {why.strip()}")

    def run(self, command):
        self.count += 1
        command = re.sub(r"(--record|--replay|convert) FILE", r"\1 field.rec", command)
        command = command.replace("FILE", FIRST_SCENARIO)
        if "/dev/ttyUSB0" in command and command.startswith("dvrsim"):
            command += " --name cable"
        command = command.replace("/dev/ttyUSB0", str(self.folder / "tty"))
        if ENDLESS.match(command):
            if command.startswith("unitctl watch"):
                subprocess.Popen(["sh", "-c", "sleep 0.2; unitctl power off; unitctl power on"],
                                 cwd=self.folder, env=self.environment)
            self.start(command, "")
            if "--link" not in command:
                self.stop(self.running[-1])
            return
        done = subprocess.run(command, shell=True, cwd=self.folder, env=self.environment, timeout=LIMIT,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        if done.returncode != 0:
            self.fail(command, f"status {done.returncode}\n{done.stdout[-800:]}")


def main():
    root, binaries = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        runner = Runner(root, binaries, folder)
        (folder / FIRST_SCENARIO).write_text(first_example((root / "docs/scenarios.md").read_text()))
        runner.start("tolvane --headless", "CPowerDetector::Init")
        runner.start(f"dvrsim --name tty --link {folder / 'tty'}", "/dev/")
        try:
            for document in documents(root):
                for command in commands_of(document.read_text()):
                    runner.run(command)
        finally:
            for process in list(runner.running):
                runner.stop(process)
    for failure in runner.failures:
        print(failure)
    print(f"{runner.count} commands of documents were run, {len(runner.failures)} failed")
    return 1 if runner.failures or runner.count < 15 else 0


if __name__ == "__main__":
    sys.exit(main())
