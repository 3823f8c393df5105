#!/usr/bin/env python3
"""The way back, through the real program: what a run did is undone, byte for byte, and nothing else is.

    restore.py PROGRAM SCENARIOS CASE

SCENARIOS is tests/scenarios; its folders are the worlds that runs are made on.
"""

import fcntl
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PROGRAM = os.path.abspath(sys.argv[1])
SCENARIOS = Path(sys.argv[2]).resolve()
sys.path.insert(0, str(SCENARIOS))
from run import SIDES, Mismatch, Scenario, expect, tree  # noqa: E402

OBJECT = ("BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nCATEGORIES:MISCELLANEOUS\r\nDTSTART:2027{:02}{:02}T{:02}0000Z\r\n"
          "DTEND:2027{:02}{:02}T{:02}3000Z\r\nDESCRIPTION:Object {}\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")

NEW_ITEM = (b"BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//test//EN\r\nBEGIN:VEVENT\r\nUID:neu\r\nDTSTAMP:20270101T080000Z\r\n"
            b"DTSTART:20270309T090000Z\r\nDTEND:20270309T100000Z\r\nSUMMARY:Neu\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")


class World(Scenario):
    """A scenario's two sides, and the program on them."""

    def __init__(self, name):
        super().__init__(PROGRAM, SCENARIOS / name)
        self.lay_out()

    def call(self, *arguments, env=None, extra=SIDES):
        command = [PROGRAM, *extra, *arguments]
        done = subprocess.run(command, cwd=self.copy, env=self.environment() | self.clock() | (env or {}), capture_output=True, timeout=60)
        return self.outcome(done.returncode, done.stdout.decode(), done.stderr.decode())

    def sync(self, *arguments):
        done = self.run(self.commands[0], "--json", *arguments)
        if done["json"] is None:
            raise Mismatch(f"no document: {done}")
        return done["json"]

    def restore(self, directory, *arguments):
        """The two sides come from the copy, whatever directory the program is called from."""
        done = self.call("--restore", self.absolute(directory), "--json", *arguments, extra=[])
        document = json.loads(done["out"]) if done["out"].startswith("{") else None
        if document:
            expect("exit in the document", document["exit"], done["exit"])
        return done["exit"], document, done["errors"]

    def absolute(self, directory):
        return directory if directory.startswith("/") else f"{self.copy}/{directory}"

    def copies(self):
        folder = self.copy / "state/halverntandolin/backups"
        return sorted(p.name for p in folder.iterdir()) if folder.exists() else []

    def actions(self, document):
        return sorted(f"{row['side']} {row['name']} {row['action']}" for row in document["restored"])


def worlds():
    for folder in sorted(SCENARIOS.iterdir()):
        if not (folder / "command").exists():
            continue
        how = json.loads((folder / "how.json").read_text()) if (folder / "how.json").exists() else {}
        commands = [line for line in (folder / "command").read_text().splitlines() if line.strip()]
        result = json.loads((folder / "expected/result.json").read_text())
        if len(commands) == 1 and result["exit"] in (0, 1, 5) and not (how.keys() & {"bare", "terminated", "locked"}):
            yield World(folder.name)


def whole_run():
    """In every mode: run, undo, undo the undoing. A run that changes nothing makes no copy."""
    undone = 0
    for world in worlds():
        try:
            before = world.state()
            backup = world.sync()["backup"]
            after = world.state()
            expect("a copy is made where something changed", backup is not None, after != before)
            expect("copies", world.copies(), [Path(backup).name] if backup else [])
            if backup is None:
                continue
            undone += 1
            check_copy(world, backup, before)
            status, document, _ = world.restore(backup)
            expect("exit of the restore", status, 0)
            expect("both sides after the restore", world.state(), before)
            expect("nothing was left", {row["action"] for row in document["restored"]} & {"kept", "failed"}, set())
            own = document["backup"]
            status, document, _ = world.restore(backup)
            expect("again: nothing to do", (status, document["backup"], {r["action"] for r in document["restored"]}), (0, None, {"unchanged"}))
            expect("exit of the restore of the restore", world.restore(own)[0], 0)
            expect("both sides as the run left them", world.state(), after)
        except Mismatch as mismatch:
            raise Mismatch(f"{world.folder.name}: {mismatch}") from None
        shutil.rmtree(world.copy)
    expect("enough worlds change something", undone >= 10, True)


def check_copy(world, backup, before):
    """A copy holds the entries of the kinds that the run worked on, and all status files."""
    folder = Path(world.absolute(backup))
    command = (world.folder / "command").read_text()
    other = {"BOTH": ".none", "VCARD": (".vcs", ".ics"), "VCAL": ".vcf"}[next(w for w in ("BOTH", "VCARD", "VCAL") if w in command)]
    for side in before:
        wanted = {name: data for name, data in before[side].items() if not name.endswith(other)}
        expect(f"names in the {side}'s copy", tree(folder / side).keys(), wanted.keys())
        expect(f"the {side}'s copy", tree(folder / side), wanted)
    for path in [folder, *folder.rglob("*")]:
        expect(f"mode of {path}", oct(path.stat().st_mode & 0o777), "0o700" if path.is_dir() else "0o600")


def spelling_and_missing_files():
    """Names in capitals come back so; status files that the run made up go again."""
    world = World("full-mode-1-makes-room")
    calendar = world.copy / "phone/telecom/cal"
    for number, path in enumerate(sorted(calendar.glob("*.vcs"))):
        path.rename(path.with_suffix(".VCS" if number % 2 else ".Vcs"))
    for name in ("telecom/devinfo.txt", "telecom/pb/info.log"):
        (world.copy / "phone" / name).unlink(missing_ok=True)
    before = world.state()
    backup = world.sync()["backup"]
    after = world.state()["phone"]
    expect("the run removed objects", any(after.get(name) != data for name, data in before["phone"].items()), True)
    expect("exit", world.restore(backup)[0], 0)
    expect("both sides", world.state(), before)


def parts_of_a_run():
    world = World("both-ways")
    before = world.state()
    backup = world.sync()["backup"]
    after = world.state()
    objects = sorted(after["phone"].keys() - before["phone"].keys())
    items = sorted(after["organizer"].keys() - before["organizer"].keys())
    expect("the run wrote to both sides", (len(objects) > 1, len(items) > 1), (True, True))

    expect("one side", world.restore(backup, "--only", "Phone")[0], 0)
    expect("phone", world.state()["phone"], before["phone"])
    expect("organizer", world.state()["organizer"], after["organizer"])

    by_file, by_identifier = Path(items[0]).name, Path(items[1]).stem
    (world.copy / "organizer" / items[1]).rename(world.copy / "organizer/calendar/renamed.ics")
    status, _, errors = world.restore(backup, "--only", "nobody.ics")
    expect("an unknown entry", (status, "no entry of this name" in errors), (2, True))
    status, document, _ = world.restore(backup, "--only", by_file)
    expect("one entry", (status, world.actions(document)), (0, [f"organizer {items[0]} removed"]))
    status, document, _ = world.restore(backup, "--only", by_identifier)
    expect("one entry by its UID, gone", (status, world.actions(document)), (0, [f"organizer {items[1]} unchanged"]))
    expect("no other", sorted(world.state()["organizer"].keys() - before["organizer"].keys()),
           sorted([*items[2:], "calendar/renamed.ics"]))


def changed_since():
    world = World("both-ways")
    before = world.state()
    backup = world.sync()["backup"]
    after = world.state()
    objects = sorted(n for n in after["phone"].keys() - before["phone"].keys())
    edited = world.copy / "phone" / objects[0]
    edited.write_bytes(edited.read_bytes().replace(b"BEGIN:VEVENT\r\n", b"BEGIN:VEVENT\r\nX-MINE:1\r\n"))
    (world.copy / "phone/telecom/cal/77.vcs").write_text(OBJECT.format(3, 9, 9, 3, 9, 9, 77))
    mine = {objects[0]: edited.read_bytes(), "telecom/cal/77.vcs": (world.copy / "phone/telecom/cal/77.vcs").read_bytes()}
    dry = world.everything()
    status, planned, _ = world.restore(backup, "--dry-run")
    expect("a dry run tells the same", status, 1)
    expect("a dry run changes nothing", world.everything(), dry)
    status, document, _ = world.restore(backup)
    expect("exit", status, 1)
    expect("what the dry run told", document["restored"], planned["restored"])
    expect("left alone and named", [r["name"] for r in document["restored"] if r["action"] == "kept"], [objects[0]])
    expect("organizer", world.state()["organizer"], before["organizer"])
    phone = world.state()["phone"]
    status_file = phone.pop("telecom/cal/info.log")
    wanted = {n: b for n, b in before["phone"].items() if n != "telecom/cal/info.log"} | mine
    expect("phone", phone, wanted)
    total = sum(name.startswith("telecom/cal/") for name in wanted)
    expect("the count tells the truth", f"TOTAL-RECORDS:{total}\r\n".encode() in status_file, True)
    quiet = world.call("--restore", Path(backup).name, "--quiet", extra=[])
    expect("quiet, by its name alone", (quiet["exit"], quiet["out"], objects[0] in quiet["errors"]), (1, "", True))


def killed():
    """A run that dies in the middle of its writes is undone as well."""
    world = World("both-ways")
    calendar = world.copy / "phone/telecom/cal"
    for n in range(100, 2100):
        day = (3, 1 + n % 28, 8 + n // 28 % 12)
        (calendar / f"{n}.vcs").write_bytes(OBJECT.format(*day, *day, n).encode())
    calendar.joinpath("info.log").write_bytes(b"MAXIMUM-RECORDS:5000\r\nTOTAL-RECORDS:2000\r\nLAST-USED-INDEX:2099\r\n")
    before = world.state()
    command = [PROGRAM, *SIDES, "VCAL", "--set", "SyncTyp=4", "--quiet"]
    process = subprocess.Popen(command, cwd=world.copy, env=world.environment() | world.clock(), stderr=subprocess.DEVNULL, start_new_session=True)
    folder = world.copy / "organizer/calendar"
    while len(os.listdir(folder)) < 200 and process.poll() is None:
        time.sleep(0.002)
    os.killpg(process.pid, signal.SIGKILL)
    process.wait()
    world.forget_clock(process.pid)
    written = len(world.state()["organizer"]) - len(before["organizer"])
    expect("killed in the middle", 100 < written < 2000, True)
    listed = json.loads(world.call("--list-backups", "--json", extra=[])["out"])["backups"]
    expect("the copy is listed", [copy["finished"] for copy in listed], [False])
    expect("exit", world.restore(listed[0]["directory"])[0], 0)
    expect("both sides", {s: t for s, t in without_temporary(world.state()).items()}, before)


def without_temporary(state):
    """A process that is killed cannot clean up the hidden file that it was writing."""
    return {side: {n: b for n, b in files.items() if not Path(n).name.startswith(".tandolin-")} for side, files in state.items()}


def no_copies_wanted():
    world = World("both-ways")
    everything = world.everything()
    expect("a dry run", world.sync("--dry-run")["backup"], None)
    expect("leaves nothing", world.everything(), everything)
    expect("--no-backup", world.sync("--no-backup")["backup"], None)
    expect("copies", world.copies(), [])
    expect("nothing to do", world.sync()["backup"], None)
    expect("copies", world.copies(), [])
    listed = world.call("--list-backups", extra=[])
    expect("an empty list", (listed["exit"], "There are no copies" in listed["out"]), (0, True))


def twenty_are_kept():
    """All within one second: none takes the place of another."""
    world = World("both-ways")
    first = world.sync()["backup"]
    made = [Path(first).name]
    for _ in range(21):
        made.append(Path(world.restore(world.absolute(f"state/halverntandolin/backups/{made[-1]}"))[1]["backup"]).name)
    expect("names differ", len(set(made)), 22)
    expect("the newest are kept", sorted(world.copies()), sorted(made[-20:]))
    document = json.loads(world.call("--list-backups", "--json", extra=[])["out"])
    expect("newest first", [Path(copy["directory"]).name for copy in document["backups"]], made[:-21:-1])
    newest = document["backups"][0]
    expect("what it was", (newest["command"], newest["runExit"]), (f"--restore {made[-2]}", 0))
    oldest = world.absolute(f"state/halverntandolin/backups/{made[-20]}")
    expect("the oldest is restored", world.restore(oldest)[0] in (0, 1), True)
    expect("and still there", Path(oldest).exists(), True)


def copy_impossible():
    """Without a copy nothing is written, and the run says what to do."""
    world = World("both-ways")
    before = world.state()
    (world.copy / "state/halverntandolin/backups").write_text("in the way")
    document = world.sync()
    expect("exit, no copy", (document["exit"], document["backup"]), (7, None))
    expect("one reason for all", ["--no-backup" in row["ErrorDesc"] for row in document["errors"]][:1], [True])
    expect("both sides", world.state(), before)
    expect("with --no-backup", world.sync("--no-backup")["exit"], 0)
    (world.copy / "state/halverntandolin/backups").unlink()
    (world.copy / "organizer/calendar").joinpath("neu.ics").write_bytes(NEW_ITEM)
    backup = world.absolute(world.sync()["backup"])
    moved, state = shutil.move(backup, world.copy / "moved"), world.state()
    (world.copy / "state/halverntandolin/backups").rmdir()
    (world.copy / "state/halverntandolin/backups").write_text("in the way")
    status, document, errors = world.restore(str(moved))
    expect("a restore neither", (status, "--no-backup" in errors, world.state()), (7, True, state))
    expect("it names each", {row["action"] for row in document["restored"]}, {"failed"})

    full = World("both-ways")
    before = full.state()
    namespace = ["unshare", "-rm", "sh", "-c", 'mount -t tmpfs -o size=16k none "$0" && exec "$@"', str(full.copy / "state")]
    if subprocess.run([*namespace, "true"], capture_output=True).returncode != 0:
        print("no namespaces here: the full disk is not tried")
        return
    done = subprocess.run([*namespace, PROGRAM, *SIDES, "VCAL", "--json", "--set", "SyncTyp=4"], cwd=full.copy, env=full.environment(), capture_output=True, timeout=60)
    document = json.loads(done.stdout)
    expect("full disk", (done.returncode, document["backup"], "--no-backup" in done.stderr.decode()), (1, None, True))
    expect("both sides", full.state(), before)


def bad_input():
    world = World("both-ways")
    backup = Path(world.absolute(world.sync()["backup"]))
    journal = (backup / "journal").read_text()
    name = journal.splitlines()[0].split("\t")[-1]

    def spoiled(file, text):
        folder = Path(tempfile.mkdtemp(dir=world.copy)) / "copy"
        shutil.copytree(backup, folder)
        (folder / file).write_text(text)
        return str(folder)

    state = world.state()
    without_journal = spoiled("journal", "")
    os.unlink(f"{without_journal}/journal")
    for what, directory, words in [
            ("missing", f"{world.copy}/nowhere", "is no copy"),
            ("foreign", str(world.copy / "home"), "is no copy"),
            ("no JSON", spoiled("manifest.json", "{"), "is damaged"),
            ("other JSON", spoiled("manifest.json", '{"format": 1}'), "is damaged"),
            ("another version", spoiled("manifest.json", '{"format": 2}'), "another version"),
            ("a name that leaves", spoiled("journal", journal.replace(name, "../../evil.vcs")), "is damaged"),
            ("a torn journal", spoiled("journal", journal[:-20]), "is damaged"),
            ("an empty journal", spoiled("journal", ""), "is damaged"),
            ("a shorter journal", spoiled("journal", journal.split("\n", 1)[0] + "\n"), "is damaged"),
            ("no journal", without_journal, "its journal is missing")]:
        status, document, errors = world.restore(directory)
        expect(f"{what}: exit and sentence", (status, document, words in errors), (2, None, True))
        expect(f"{what}: both sides", world.state(), state)
        expect(f"{what}: no words of a library", "json.exception" in errors, False)
    listed = backup.parent / "2027-01-01T00-00-00"
    shutil.copytree(without_journal, listed)
    document = json.loads(world.call("--list-backups", "--json", extra=[])["out"])
    expect("a damaged copy in the list", (document["exit"], [row["File"] for row in document["errors"]]), (1, [listed.name]))
    shutil.rmtree(listed)
    status, planned, _ = world.restore(str(backup), "--max-remove", "1", "--dry-run")
    status, document, _ = world.restore(str(backup), "--max-remove", "1")
    expect("--max-remove", (status, document["dryRun"], world.state()), (5, True, state))
    expect("--max-remove names what would be", (len(document["restored"]) > 1, document["restored"]), (True, planned["restored"]))
    (world.copy / "phone").rename(world.copy / "away")
    expect("the phone is away", (world.restore(str(backup))[0], world.state()["organizer"]), (3, state["organizer"]))
    (world.copy / "away").rename(world.copy / "phone")
    expect("another place for a side", world.restore(str(backup), "--organizer", "folder:nowhere")[0], 4)
    for beside in (["VCAL"], ["--only", ""], ["--only="], ["--set", "SyncTyp=1"], ["--answer", "yes"], ["--emit"], ["--accept-empty-phone"]):
        expect(f"{beside} beside it", world.call("--restore", str(backup), *beside, extra=[])["exit"], 2)
    expect("beside the list", world.call("--list-backups", "--phone", "dir:phone", extra=[])["exit"], 2)
    expect("both sides", world.state(), state)
    outside = spoiled("journal", journal.replace(name, "elsewhere/evil.vcs"))
    status, document, _ = world.restore(outside)
    expect("a name of no directory", (status, [row["name"] for row in document["restored"] if row["action"] == "failed"]),
           (1, ["elsewhere/evil.vcs"]))


def unreadable_entries():
    """What cannot be read is named and left; all else is undone."""
    world = World("both-ways")
    before = world.state()
    backup = world.sync()["backup"]
    after = world.state()
    objects = sorted(after["phone"].keys() - before["phone"].keys())
    items = sorted(after["organizer"].keys() - before["organizer"].keys())
    (world.copy / "phone" / objects[0]).unlink()
    (world.copy / "phone" / objects[0]).mkdir()
    (world.copy / "organizer" / items[0]).unlink()
    (world.copy / "organizer" / items[0]).mkdir()
    (world.copy / "organizer" / items[1]).unlink()
    (world.copy / "outside.ics").write_bytes(NEW_ITEM)
    (world.copy / "organizer" / items[1]).symlink_to("../../outside.ics")
    status, document, _ = world.restore(backup)
    failed = {row["name"]: row["reason"] for row in document["restored"] if row["action"] == "failed"}
    expect("exit and what is left", (status, sorted(failed)), (1, sorted([objects[0], items[0], items[1]])))
    expect("each with a reason", all(failed.values()), True)
    for side, names in (("phone", objects[1:]), ("organizer", items[2:])):
        expect(f"the {side}'s others are undone", [name for name in names if (world.copy / side / name).exists()], [])
    expect("outside", (world.copy / "outside.ics").read_bytes(), NEW_ITEM)


def changed_while_restoring():
    """What somebody writes while the restore runs is not taken away."""
    world = World("both-ways")
    calendar = world.copy / "phone/telecom/cal"
    for n in range(100, 1100):
        day = (3, 1 + n % 28, 8 + n // 28 % 12)
        (calendar / f"{n}.vcs").write_bytes(OBJECT.format(*day, *day, n).encode())
    calendar.joinpath("info.log").write_bytes(b"MAXIMUM-RECORDS:5000\r\nTOTAL-RECORDS:1000\r\nLAST-USED-INDEX:1099\r\n")
    folder = world.copy / "organizer/calendar"
    before = set(os.listdir(folder))
    backup = Path(world.absolute(world.sync()["backup"]))
    made = [line.split("\t")[-1] for line in (backup / "journal").read_text().splitlines() if "\torganizer\t" in line]
    command = [PROGRAM, "--restore", str(backup), "--json"]
    process = subprocess.Popen(command, cwd=world.copy, env=world.environment() | world.clock(), stdout=subprocess.PIPE, start_new_session=True)
    full = len(os.listdir(folder))
    while len(os.listdir(folder)) == full and process.poll() is None:
        time.sleep(0.0005)
    os.killpg(process.pid, signal.SIGSTOP)
    edited = world.copy / "organizer" / made[-1]
    expect("stopped in the middle", edited.exists(), True)
    edited.write_bytes(NEW_ITEM)
    os.killpg(process.pid, signal.SIGCONT)
    document = json.loads(process.communicate(timeout=60)[0])
    expect("exit", (process.returncode, document["exit"]), (1, 1))
    expect("named", [row["name"] for row in document["restored"] if row["action"] == "kept"], [made[-1]])
    expect("what was written", edited.read_bytes(), NEW_ITEM)
    expect("all else is undone", set(os.listdir(folder)), before | {edited.name})


def names_and_words():
    """The ways to name a copy and an entry, and what is said."""
    world = World("both-ways")
    before = world.state()
    backup = Path(world.absolute(world.sync()["backup"]))
    objects = sorted(world.state()["phone"].keys() - before["phone"].keys())
    items = sorted(world.state()["organizer"].keys() - before["organizer"].keys())
    first = Path(objects[0]).name
    for named in (f"{backup.name}/", f"{backup}/", backup.name):
        done = world.call("--restore", named, "--dry-run", extra=[])
        expect(f"{named}: exit", done["exit"], 0)
        expect(f"{named}: counts", f"{len(objects) + len(items)} entries of the run: 0 put back, {len(objects) + len(items)} removed, "
               "0 as before, 0 left alone, 0 failed" in done["out"], True)
    done = world.call("--restore", backup.name, "--only", first.upper(), "--dry-run", extra=[])
    expect("capitals", (done["exit"], "1 entry of the run: 0 put back, 1 removed" in done["out"]), (0, True))

    folded = world.copy / "organizer" / items[0]
    whole = folded.read_bytes()
    identifier = "A" * 60 + "-" + "B" * 30
    line = f"UID:{identifier}"
    folded.write_bytes(whole.replace(b"UID:" + folded.stem.encode(), f"{line[:70]}\r\n {line[70:]}".encode()))
    expect("the UID is changed", folded.read_bytes() != whole, True)
    status, document, _ = world.restore(str(backup), "--only", identifier, "--dry-run")
    expect("a folded UID", (status, world.actions(document)), (1, [f"organizer {items[0]} kept"]))
    folded.write_bytes(whole)

    copies = world.copies()
    done = world.call("--restore", backup.name, extra=[])
    own = next(name for name in world.copies() if name not in copies)
    expect("its own copy is named on standard error", (own in done["out"], own in done["errors"]), (False, True))
    expect("exit", done["exit"], 0)
    manifest = json.loads((backup.parent / own / "manifest.json").read_text())
    expect("the command of the copy", manifest["command"], f"--restore {backup.name}")


def lists():
    """A list that is no list, one while a run is at work, and a result that nobody gets."""
    world = World("both-ways")
    backup = Path(world.absolute(world.sync()["backup"]))
    manifest = backup / "manifest.json"
    done = manifest.read_text()
    manifest.write_text(done.replace('"finished": true', '"finished": false'))
    expect("ended early", "ended before it was done" in world.call("--list-backups", extra=[])["out"], True)
    with open(backup.parent.parent / "lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        expect("at work", "still running" in world.call("--list-backups", extra=[])["out"], True)
        status, document, _ = world.restore(str(backup))
        expect("a restore beside it", (status, len(document["errors"])), (6, 1))
        document = world.sync()
        expect("a run beside it tells why", (document["exit"], len(document["errors"])), (6, 1))
    manifest.write_text(done)
    with open("/dev/full", "w") as full:
        for arguments in (["--list-backups"], ["--help"], ["--restore", backup.name, "--dry-run"], ["--inspect", "phone/telecom/cal/1.vcs"]):
            ended = subprocess.run([PROGRAM, *arguments], cwd=world.copy, env=world.environment() | world.clock(), stdout=full, stderr=subprocess.PIPE, timeout=60)
            expect(f"{arguments}: a full standard output", (ended.returncode, b"standard output" in ended.stderr), (1, True))
    (world.copy / "file").write_text("")
    listed = world.call("--list-backups", env={"XDG_STATE_HOME": str(world.copy / "file")}, extra=[])
    expect("the directory of states is a file", (listed["exit"], "There are no copies" in listed["out"]), (1, False))


def above_the_maximum():
    """What mode 1 took from a slot that the phone does not give out comes back into it."""
    world = World("full-mode-1-makes-room")
    calendar = world.copy / "phone/telecom/cal"
    maximum = int((calendar / "info.log").read_text().split("MAXIMUM-RECORDS:")[1].split()[0])
    first = min(calendar.glob("*.vcs"), key=lambda path: int(path.stem))
    for path in calendar.glob("*.vcs"):
        path.rename(calendar / f"{int(path.stem) + maximum}.vcs")
    before = world.state()
    backup = world.sync()["backup"]
    expect("removed", (calendar / f"{int(first.stem) + maximum}.vcs").exists(), False)
    expect("exit", world.restore(backup)[0], 0)
    expect("both sides", world.state(), before)


CASES = [whole_run, spelling_and_missing_files, parts_of_a_run, changed_since, killed, no_copies_wanted, twenty_are_kept,
         copy_impossible, bad_input, unreadable_entries, changed_while_restoring, names_and_words, lists, above_the_maximum]


def main():
    case = next(case for case in CASES if case.__name__ == sys.argv[3])
    try:
        case()
    except Mismatch as mismatch:
        print(f"{case.__name__}: {mismatch}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
