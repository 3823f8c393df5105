#!/usr/bin/env python3
"""Runs one scenario folder through the real program, on a day that stands still.

    run.py PROGRAM SCENARIO

A scenario holds
    phone/ organizer/ settings.toml   both sides before the run; taken from the scenario that `like` names where missing
    command                           the arguments, a line for each run; the two sides, settings, home and --json are added
    how.json                          optional: like, day, env, bare, locked, terminated, killed; then: the arguments of the
                                      last run, where they are not those of the first
    expected/result.json              exit and what else is compared, see `check_result`
    expected/phone/                   what differs from phone/ afterwards; "phoneGone" in result.json names what is gone
    expected/stdout.txt, expected/home/
    expected/khal.txt, expected/khard.txt, "vdirsyncer" in result.json   other programs on the organizer: see peers.py

With one line in `command` the same arguments run three times: with --dry-run, which must change nothing and tell what the
second run then does; in earnest; and once more, which must find nothing to do. Everything else that a scenario does not
name must be as it was.
"""

import fcntl
import json
import os
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

import peers
from files import tree

DAY = "2027-03-01 12:00:00"
SIDES = ["--phone", "dir:phone", "--organizer", "folder:organizer", "--settings", "settings.toml", "--home", "home"]
UUID_FILE = re.compile(r"(?:calendar|contacts/[^.]+)/([0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12})\.(?:ics|vcf)")
TIMEOUT = 60


class Mismatch(Exception):
    pass


def expect(what, actual, wanted):
    if actual != wanted:
        raise Mismatch(f"{what}\n  is     {actual!r}\n  wanted {wanted!r}")


def differences(before, after):
    return sorted(name for name in before.keys() | after.keys() if before.get(name) != after.get(name))


class Scenario:
    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.how = json.loads((folder / "how.json").read_text()) if (folder / "how.json").exists() else {}
        self.result = json.loads((folder / "expected/result.json").read_text())
        self.commands = [line for line in (folder / "command").read_text().splitlines() if line.strip()]
        self.stopped = "terminated" in self.how or "killed" in self.how
        self.copy = Path(tempfile.mkdtemp(prefix="tandolin-scenario-"))

    def lay_out(self):
        base = self.folder.parent / self.how["like"] if "like" in self.how else None
        for name in ("phone", "organizer", "settings.toml"):
            for source in (base, self.folder):
                if source is None or not (source / name).exists():
                    continue
                if (source / name).is_dir():
                    shutil.copytree(source / name, self.copy / name, dirs_exist_ok=True)
                else:
                    shutil.copy(source / name, self.copy / name)
        for name in self.how.get("without", []):
            target = self.copy / name
            shutil.rmtree(target) if target.is_dir() else target.unlink()
        for name in self.how.get("directories", []):
            (self.copy / name).mkdir(parents=True)
        (self.copy / "home").mkdir()
        (self.copy / "state/halverntandolin").mkdir(parents=True)

    def environment(self):
        env = {"PATH": os.environ["PATH"], "HOME": str(self.copy), "XDG_STATE_HOME": str(self.copy / "state"),
               "TZ": "UTC", "LC_ALL": "C.UTF-8", "NO_FAKE_STAT": "1",
               # The clock's library is loaded before a sanitizer's, which would refuse to start.
               "ASAN_OPTIONS": "verify_asan_link_order=0"}
        return env | self.how.get("env", {})

    def clock(self):
        """The day that stands still."""
        library = next(Path("/usr/lib").glob("*/faketime/libfaketime.so.1"))
        return {"LD_PRELOAD": str(library), "FAKETIME": self.how.get("day", DAY)}

    @staticmethod
    def forget_clock(pid):
        """What the clock of a killed process leaves would stop a later one that gets the same number."""
        for left in (f"faketime_shm_{pid}", f"sem.faketime_sem_{pid}"):
            Path("/dev/shm", left).unlink(missing_ok=True)

    def arguments(self, line, extra):
        return (shlex.split(line) if self.how.get("bare") else [*SIDES, *shlex.split(line)]) + extra

    def run(self, line, *extra):
        """One run of the program; its output is decoded JSON when it looks like a document."""
        command = [self.program, *self.arguments(line, list(extra))]
        done = subprocess.run(command, cwd=self.copy, env=self.environment() | self.clock(), capture_output=True,
                              timeout=TIMEOUT)
        return self.outcome(done.returncode, done.stdout.decode(), done.stderr.decode())

    def outcome(self, status, out, errors):
        here = f"{self.copy}/"
        out, errors = out.replace(here, ""), errors.replace(here, "")
        document = json.loads(out) if out.startswith('{"mode"') else None
        return {"exit": status, "out": out, "errors": errors, "json": document}

    def run_stopped(self, line):
        """The program is stopped before it has read anything: its first line cannot leave, for the pipe is full."""
        reading, writing = os.pipe()
        fcntl.fcntl(writing, fcntl.F_SETPIPE_SZ, 4096)
        os.write(writing, b"." * 4096)
        process = subprocess.Popen([self.program, *self.arguments(line, ["--json"])], cwd=self.copy,
                                   env=self.environment(), stdout=subprocess.PIPE, stderr=writing)
        os.close(writing)
        (self.kill if "killed" in self.how else self.terminate)(process)
        errors = b""
        while chunk := os.read(reading, 4096):
            errors += chunk
        os.close(reading)
        out = process.communicate(timeout=TIMEOUT)[0]
        return self.outcome(process.returncode, out.decode(), errors.decode().lstrip("."))

    @staticmethod
    def still_runs(process):
        if process.poll() is not None:
            raise Mismatch("the program ended before it could be stopped")

    def terminate(self, process):
        catches = 0
        while not catches >> (signal.SIGTERM - 1) & 1:
            status = Path(f"/proc/{process.pid}/status").read_text()
            catches = int(re.search(r"SigCgt:\s*(\w+)", status).group(1), 16)
            self.still_runs(process)
        process.send_signal(signal.SIGTERM)

    def kill(self, process):
        """A second process sends the word; it is done at once, whether the first one takes it or not."""
        while not (self.copy / "state/halverntandolin/socket").exists():
            self.still_runs(process)
        outcome = self.run(self.how["killed"])
        expect("what KILL ends with", [outcome["exit"], outcome["out"], outcome["errors"]], [0, "", ""])
        self.still_runs(process)

    def state(self):
        return {side: tree(self.copy / side) for side in ("phone", "organizer") if (self.copy / side).exists()}

    def everything(self):
        """All files but the lock, which every run holds."""
        files = tree(self.copy)
        files.pop("state/halverntandolin/lock", None)
        return files


def rows_of(document):
    rows = []
    for row in document["calendar"]:
        text = " ".join(row[key] for key in ("Transfer", "Action", "Date", "Time", "Typ", "Text"))
        rows.append(text + (" FAILED " + row["ErrorDesc"] if row["Error"] else ""))
    return rows


def contact_rows_of(document):
    return [" ".join(filter(None, (row[key] for key in ("Transfer", "Action", "Name", "Phone")))) for row in document["contacts"]]


def facts_of(file):
    """What the tests know of an event or a card, as its lines say it."""
    lines = re.sub(r"\r\n[ \t]", "", file.decode()).split("\r\n")
    if lines[0] == "BEGIN:VCARD":
        return sorted(line for line in lines[1:] if line and not line.startswith(("UID", "REV", "END")))
    event = lines[lines.index("BEGIN:VEVENT"):lines.index("END:VEVENT")]
    if "BEGIN:VALARM" in event:
        event = event[:event.index("BEGIN:VALARM")] + [line for line in event if line.startswith("TRIGGER")]
    kept = ("DTSTART", "DTEND", "SUMMARY", "RRULE", "TRIGGER", "X-HALVERNTANDOLIN-MEETING")
    return sorted(line for line in event if line.startswith(kept))


def check_new_items(before, after, wanted):
    new = [name for name in sorted(after.keys() - before.keys())]
    for name in before:
        expect(f"organizer/{name}", after.get(name), before[name])
    for name in new:
        match = UUID_FILE.fullmatch(name)
        expect(f"the name of organizer/{name} is a UUID and its UID", bool(match), True)
        expect(f"organizer/{name} holds its UID", f"UID:{match.group(1)}\r\n" in after[name].decode(), True)
    expect("new items", sorted(facts_of(after[name]) for name in new), sorted(sorted(item) for item in wanted))


def check_phone(scenario, before, after):
    wanted = dict(before)
    for name in scenario.result.get("phoneGone", []):
        del wanted[name]
    overlay = scenario.folder / "expected/phone"
    if overlay.exists():
        wanted |= tree(overlay)
    for name in sorted(wanted.keys() | after.keys()):
        expect(f"phone/{name}", after.get(name), wanted.get(name))


def check_result(result, outcome):
    """Only what result.json names is compared."""
    expect("exit status", outcome["exit"], result["exit"])
    document = outcome["json"]
    if document is not None:
        expect("exit in the document", document["exit"], result["exit"])
        expect("contacts", contact_rows_of(document), result.get("contacts", []))
        changed = any(value > 0 for key, value in document["counts"].items() if key.endswith(("Written", "Removed")))
        expect("a copy was made", document["backup"] is not None, changed and not document["dryRun"])
        expect("rows", rows_of(document), result.get("calendar", []))
        errors = [[e["ErrorNum"], e["File"], e["Line"]] for e in document["errors"]]
        expect("errors", errors, result.get("errors", []))
        notes = [[n[key] for key in ("kind", "side", "file", "text", "reason")] for n in document["notes"]]
        wanted = result.get("notes", [])
        expect("notes", [note[:len(wanted[0]) if wanted else 5] for note in notes], wanted)
        for key in ("counts", "mode", "transferErrors", "programErrors"):
            if key in result:
                expect(key, document[key], result[key])
    for words in result.get("stderr", []):
        expect(f"standard error holds {words!r}", words in outcome["errors"], True)
    for words in result.get("stdout", []):
        expect(f"standard output holds {words!r}", words in outcome["out"], True)


def check_dry_run(scenario, line):
    before = scenario.everything()
    outcome = scenario.run(line, "--dry-run", "--json")
    expect("files changed by --dry-run", differences(before, scenario.everything()), [])
    expect("dryRun in the document", outcome["json"]["dryRun"], True)
    return outcome


def check_same_story(dry, real):
    expect("exit status of --dry-run", dry["exit"], real["exit"])
    for key in ("mode", "counts", "calendar", "contacts", "errors", "notes", "transferErrors"):
        expect(f"{key} of --dry-run", dry["json"][key], real["json"][key])


def run_in_earnest(scenario, line):
    if scenario.stopped:
        return scenario.run_stopped(line)
    return scenario.run(line, *([] if (scenario.folder / "expected/stdout.txt").exists() else ["--json"]))


def one_command(scenario, line):
    result = scenario.result
    dry = None if result["exit"] in (2, 6, 7) or scenario.stopped else check_dry_run(scenario, line)
    settings = tree(scenario.copy).get("settings.toml")
    before = scenario.state()
    real = run_in_earnest(scenario, line)
    check_result(result, real)
    if dry and real["json"]:
        check_same_story(dry, real)
    after = scenario.state()
    if "phone" in before:
        check_phone(scenario, before["phone"], after["phone"])
    if "organizer" in before:
        check_new_items(before["organizer"], after["organizer"], result.get("newItems", []))
    check_files(scenario, settings, real)
    for what, actual, wanted in peers.checks(scenario):
        expect(what, actual, wanted)
    if not scenario.stopped:
        second_run(scenario, line, after)


def check_files(scenario, settings, outcome):
    if "damaged" in scenario.result:
        expect("settings.toml", tree(scenario.copy).get("settings.toml"), settings)
        kept = settings if scenario.result["damaged"] else None
        expect("settings.toml.damaged", tree(scenario.copy).get("settings.toml.damaged"), kept)
    wanted = scenario.folder / "expected/stdout.txt"
    if wanted.exists():
        expect("standard output", outcome["out"], wanted.read_text())
    if (scenario.folder / "expected/home").exists():
        for name, content in tree(scenario.folder / "expected/home").items():
            expect(f"home/{name}", (scenario.copy / "home" / name).read_bytes(), content)


def second_run(scenario, line, before):
    outcome = scenario.run(scenario.how.get("then", line), "--json")
    expect("exit status of the second run", outcome["exit"], scenario.result.get("second", scenario.result["exit"]))
    expect("files changed by the second run",
           [side for side in before if before[side] != scenario.state()[side]], [])
    if outcome["json"]:
        expect("rows of the second run", rows_of(outcome["json"]) + contact_rows_of(outcome["json"]), [])


def several_commands(scenario):
    """Each must end alike, say what stands behind its "#", and leave everything as it was."""
    before = scenario.everything()
    for command in scenario.commands:
        line, _, words = command.partition("#")
        try:
            check_result(scenario.result | ({"stderr": [words.strip()]} if words else {}), scenario.run(line))
            expect("files changed", differences(before, scenario.everything()), [])
        except Mismatch as mismatch:
            raise Mismatch(f"{line}: {mismatch}") from None


def hold_lock(scenario):
    lock = open(scenario.copy / "state/halverntandolin/lock", "w")
    fcntl.flock(lock, fcntl.LOCK_EX)
    return lock


def main():
    scenario = Scenario(os.path.abspath(sys.argv[1]), Path(sys.argv[2]).resolve())
    try:
        scenario.lay_out()
        lock = hold_lock(scenario) if scenario.how.get("locked") else None
        if len(scenario.commands) == 1:
            one_command(scenario, scenario.commands[0])
        else:
            several_commands(scenario)
        if lock:
            lock.close()
    except Mismatch as mismatch:
        print(f"{scenario.folder.name}: {mismatch}")
        print(f"the copy is kept: {scenario.copy}")
        return 1
    shutil.rmtree(scenario.copy)
    return 0


if __name__ == "__main__":
    sys.exit(main())
