#!/usr/bin/env python3
"""Disturbs the real program at its system calls, and looks at what is on the disk afterwards.

    system_calls.py PROGRAM PART [--every N]

PART is one of
    kills    the process dies before its k-th system call, for every k
    errors   the k-th call on a file of ours fails: full disk, input/output error, refusal, interruption
    foreign  the program is stopped behind its k-th call on a file of ours, another program changes the organizer, and it goes on

strace counts and disturbs the calls. After each disturbance: no file is torn, a second run heals, no entry is lost or
doubled, and a third run writes nothing. With --every N only each N-th disturbance is tried.
"""

import argparse
import os
import re
import shutil
import signal
import subprocess
import sys
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

from other_program import CHANGES, OtherProgram
from worlds import Mismatch, TIMEOUT, World, check_copies, check_whole, entries, expect, expect_same, known_contents

WORLDS = [("mode-4", "sync", "BOTH"), ("full-mode-1-makes-room", "sync", "VCAL"), ("mode-4", "restore", "BOTH")]
CALL = re.compile(r"^(\w+)\((.*)$")
NOT_TO_DISTURB = {"execve", "exit_group", "brk", "mmap", "munmap", "mprotect", "arch_prctl"}
AREAS = [("copies", r"state/halverntandolin/backups"), ("state", r"state\b"), ("settings", r"settings\.toml"),
         ("home", r"/home\b|\"home"), ("phone", r"\bphone\b"), ("organizer", r"\borganizer\b")]
WRITES = {"write", "fsync", "fdatasync", "syncfs", "rename", "renameat", "renameat2", "unlink", "unlinkat", "mkdir", "fchmod", "linkat"}
READS = {"read", "getdents64"}
# The statuses that fit a failure on the files of an area; the first one where nothing was written yet.
STATUSES = {"phone": (3, 1), "organizer": (4, 1), "settings": (7,), "home": (7, 1), "state": (7,), "copies": (7, 1)}
ERRORS = ["ENOSPC", "EIO", "EACCES", "EINTR"]



@dataclass(frozen=True)
class Call:
    """The `number`-th call of this name."""
    name: str
    number: int
    text: str
    after_copy: bool = False  # the copies before the first write were complete by then

    @property
    def area(self):
        """Whose file it is on; what is written to standard output names files too, but is none."""
        return None if re.match(r"[012]<", self.text) else next((area for area, pattern in AREAS if re.search(pattern, self.text)), None)

    @property
    def of_contacts(self):
        return bool(re.search(r"/pb\b|/contacts\b", self.text))

    @property
    def lists(self):
        """The listing of a directory by the library, which does not repeat what was interrupted."""
        return self.name == "getdents64" or "O_DIRECTORY" in self.text

    @property
    def writes(self):
        return self.name in WRITES or bool(self.name == "openat" and re.search("O_CREAT|O_WRONLY|O_TRUNC", self.text))

    def __str__(self):
        return f"{self.name} {self.number} ({self.text[:150]})"


def strace(world, log, *options):
    return ["strace", "-f", "-y", "-o", str(log), *options, "--"]


def calls_of(world):
    """All calls of an undisturbed run from its first one on a file of ours, and the world that it leaves."""
    after = world.twin()
    log = after.copy.parent / "calls"
    outcome = after.task(around=strace(after, log))
    World.expect_clean(outcome)
    numbers, calls, copied = Counter(), [], False
    for line in log.read_text(errors="replace").splitlines():
        match = CALL.match(line.split(None, 1)[1].replace(str(after.copy), ""))
        if not match:
            continue
        numbers[match[1]] += 1
        calls.append(Call(match[1], numbers[match[1]], match[2], copied))
        copied = copied or match[1] == "rename"  # the one of a directory; files go through the calls that end in "at"
    first = next(place for place, call in enumerate(calls) if call.area)
    return [call for call in calls[first:] if call.name not in NOT_TO_DISTURB], after


class Sweep:
    """One world, what an undisturbed run makes of it, and the checks that hold after every disturbance."""

    def __init__(self, program, name, task, kinds):
        self.world = World(program, name, task, kinds)
        self.calls, self.after = calls_of(self.world)
        self.known = known_contents(self.world.files(), self.after.files(), *self.without_phone())
        self.wanted = entries(self.after.state())

    def remove(self):
        self.world.remove()
        self.after.remove()

    def without_phone(self):
        """What a run writes of an entry whose object is gone: the one before it died between removing and writing it."""
        if self.world.restores:
            return []
        twin = self.world.twin()
        for path in (twin.copy / "phone/telecom/cal").glob("*.vcs"):
            path.unlink()
        twin.expect_clean(twin.task(also=["--accept-empty-phone"]))
        files = twin.files()
        twin.remove()
        return [files]

    def heal(self, twin):
        """A clean run, and another that finds nothing to do."""
        World.expect_clean(twin.task())
        check_whole(twin, self.known)
        found = entries(twin.state())
        for side, wanted in self.wanted.items():
            expect(f"lost on the {side}", sorted((wanted - found[side]).elements()), [])
            expect(f"doubled on the {side}", sorted((found[side] - wanted).elements()), [])
        if self.world.restores:
            expect_same("restored", twin.sides(), self.world.untouched)
        state = twin.state()
        World.expect_clean(twin.task())
        expect_same("a further run writes nothing", twin.state(), state)

    def check_undo(self, twin):
        """Whatever a run did before it died, the way back leads to the files of before."""
        if self.world.restores or not twin.copies():
            return
        outcome = twin.call([twin.program, "--restore", twin.copies()[-1], "--json"])
        World.expect_clean(outcome)
        expect_same("undone", twin.sides(), self.world.untouched)

    def kill(self, call):
        twin = self.world.twin()
        log = twin.copy.parent / "log"
        outcome = twin.task(around=strace(twin, log, "-e", f"trace={call.name}", "-e", f"inject={call.name}:signal=KILL:when={call.number}"))
        expect("killed", outcome["exit"], -signal.SIGKILL)
        check_whole(twin, self.known)
        check_copies(twin)
        other = twin.twin()
        self.check_undo(other)
        other.remove()
        self.heal(twin)
        twin.remove()

    def fail(self, call, error):
        twin = self.world.twin()
        log = twin.copy.parent / "log"
        outcome = twin.task(around=strace(twin, log, "-e", f"trace={call.name}", "-e", f"inject={call.name}:error={error}:when={call.number}"))
        expect("the call was hit", "(INJECTED)" in log.read_text(errors="replace"), True)
        check_whole(twin, self.known)
        check_copies(twin)
        check_status(self, twin, call, error, outcome)
        self.heal(twin)
        twin.remove()

    def disturb(self, call, change):
        twin = self.world.twin()
        cards = twin.has_contacts and call.of_contacts
        other = OtherProgram(twin.copy / ("organizer/contacts/Kontakte" if cards else "organizer/calendar"))
        outcome = stop_and_go(twin, call, lambda: change(other))
        expect(f"status: {outcome['errors'][-300:]}", outcome["exit"] in (0, 1, 4), True)
        other.check("after the run")
        twin.expect_clean(twin.task(), (0, 1))
        other.check("after the next run")
        for side, found in entries(twin.state()).items():
            expect(f"doubled on the {side}", [entry for entry, count in found.items() if count > 1], [])
        state = twin.state()
        twin.expect_clean(twin.task(), (0, 1))
        expect_same("a further run writes nothing", twin.state(), state)
        twin.remove()

    def complete(self, twin):
        return entries(twin.state()) == self.wanted and twin.files().keys() >= {"home/logFile.rtf"} & self.after.files().keys()


def check_status(sweep, twin, call, error, outcome):
    """The status names the cause; a run that reports success has done everything."""
    status, document, told = outcome["exit"], outcome["json"], outcome["errors"]
    where = f"status {status} after {error}: {told[-300:]}"
    if status == 0:
        expect(f"{where}: all is done", sweep.complete(twin), True)
        return
    if sweep.world.restores and status == 2 and call.area == "copies":
        # The copy that is to be restored cannot be read.
        expect(where, "cannot read" in told, True)
        return
    expect(f"{where}: the document", document is not None and document["exit"], status)
    rows = [row["ErrorDesc"] for kind in ("calendar", "contacts") for row in document.get(kind, []) if row["Error"]]
    reasons = rows + [row["ErrorDesc"] for row in document["errors"]]
    expect(f"{where}: a reason", bool(reasons), True)
    if not sweep.world.restores:  # a restore names the entries in its document
        expect(f"{where}: told on standard error", [reason for reason in reasons if reason not in told], [])
    if error == "EINTR" and not call.lists:
        raise Mismatch(f"{where}: an interruption is no failure")
    statuses = STATUSES[call.area]
    nothing_yet = twin.sides() == {side: files for side, files in sweep.world.state().items()}
    # A restore leaves an entry that it cannot read alone and does the others.
    single = sweep.world.restores and not call.lists and status == 1
    if call.area in ("phone", "organizer") and not call.writes and not call.after_copy and not single:
        expect(f"{where}: a failed read", (status, nothing_yet), (statuses[0], True))
    if call.area == "copies" and not call.after_copy:
        expect(f"{where}: no copy", (status, nothing_yet), (1 if error == "ENOSPC" else 7, True))
    expect(f"{where}: allowed", status in statuses, True)


def stop_and_go(twin, call, change):
    """Runs the task; behind the call the program stands still while another one changes the organizer."""
    log = twin.copy.parent / "log"
    command = strace(twin, log, "-e", f"trace={call.name}", "-e", f"inject={call.name}:signal=STOP:when={call.number}")
    process = subprocess.Popen([*command, twin.program, *twin.arguments_of_task], cwd=twin.copy, env=twin.environment(),
                               stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    deadline = time.monotonic() + TIMEOUT
    while "--- stopped by SIGSTOP" not in (text := log.read_text(errors="replace") if log.exists() else ""):
        if process.poll() is not None or time.monotonic() > deadline:
            raise Mismatch("the program was not stopped")
        time.sleep(0.001)
    change()
    os.kill(int(text.split(None, 1)[0]), signal.SIGCONT)
    out, errors = process.communicate(timeout=TIMEOUT)
    return twin.told(process.returncode, out, errors)


def tries(part, sweep, every):
    ours = [call for call in sweep.calls if call.area]
    if part == "kills":
        chosen = [(sweep.kill, (call,)) for call in sweep.calls]
    elif part == "errors":
        failing = [call for call in ours if call.name in READS | WRITES or call.name == "openat"]
        chosen = [(sweep.fail, (call, error)) for call in failing for error in ERRORS]
    else:
        chosen = [(sweep.disturb, (call, change)) for call in ours if call.area == "organizer" or call.name == "write" for change in CHANGES]
    return chosen[::every]


def attempt(job):
    method, arguments = job
    try:
        method(*arguments)
        return None
    except (Mismatch, subprocess.TimeoutExpired) as problem:
        return f"{' '.join(getattr(one, '__name__', str(one)) for one in arguments)}: {problem}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("part", choices=["kills", "errors", "foreign"])
    parser.add_argument("--every", type=int, default=1)
    options = parser.parse_args()
    if shutil.which("strace") is None:
        print("strace is missing, nothing was tried")
        return 1
    problems, tried = [], 0
    for name, task, kinds in WORLDS:
        sweep = Sweep(os.path.abspath(options.program), name, task, kinds)
        jobs = tries(options.part, sweep, options.every)
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            found = [problem for problem in pool.map(attempt, jobs) if problem]
        sweep.remove()
        problems += found
        tried += len(jobs)
    for problem in problems:
        print(problem)
    counts = [sum(re.search(rf"(^|: ){word}\b", problem) is not None for problem in problems) for word in ("torn", "lost", "doubled")]
    print(f"{options.part}: {tried} tried, {len(problems)} wrong: {counts[0]} torn, {counts[1]} lost, {counts[2]} doubled")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
