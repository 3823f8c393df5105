"""Small worlds for the fault sweeps: what the program is run on, and what must hold of the files afterwards."""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from collections import Counter
from pathlib import Path

SCENARIOS = Path(__file__).resolve().parent.parent / "scenarios"
sys.path.insert(0, str(SCENARIOS))
from run import SIDES, Mismatch, Scenario, differences, expect, tree  # noqa: E402

if os.access("/dev/shm", os.W_OK):
    tempfile.tempdir = "/dev/shm"  # thousands of runs flush their files; memory takes that at once

TIMEOUT = 60
TEMPORARY = re.compile(r"(^|/)\.tandolin-[^/]*$")
CREATED = re.compile(r"(^|/)[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\.(ics|vcf)$")
MOMENT = re.compile(rb"^(UID|DTSTAMP|CREATED|LAST-MODIFIED|REV):.*$", re.M)
CARDS = {  # a pair, and one of each side
    "phone/telecom/pb/1.vcf": "VERSION:2.1\nN:Meier;Eva\nTEL;HOME:030 1-23\n",
    "phone/telecom/pb/3.vcf": "VERSION:2.1\nN:Weber;Uli\nTEL;CELL:0171 1\n",
    "organizer/contacts/Kontakte/c1.vcf": "VERSION:3.0\nUID:c1\nFN:Eva Meier\nN:Meier;Eva;;;\nTEL;TYPE=HOME:(030) 123\n",
    "organizer/contacts/Kontakte/c2.vcf": "VERSION:3.0\nUID:c2\nFN:Jan Lang\nN:Lang;Jan;;;\nTEL;TYPE=WORK:0911/2\n"}


class World(Scenario):
    """A scenario's two sides, with a few contacts for BOTH. `task` is the run that is disturbed: a sync, or the restore of the
    sync before it."""

    def __init__(self, program, name, task="sync", kinds="VCAL"):
        super().__init__(program, SCENARIOS / name)
        self.lay_out()
        self.commands = [line.replace("VCAL", kinds) for line in self.commands]
        shutil.rmtree(self.copy / "organizer/contacts", ignore_errors=True)
        self.has_contacts = kinds == "BOTH"
        if self.has_contacts:
            self.lay_out_cards()
        self.untouched = self.state()
        self.restores = task == "restore"
        self.arguments_of_task = [*SIDES, *self.commands[0].split(), "--json"]
        if self.restores:
            self.expect_clean(self.task())
            self.arguments_of_task = ["--restore", self.copies()[0], "--json"]

    def lay_out_cards(self):
        (self.copy / "organizer/contacts/Kontakte").mkdir(parents=True)
        for name, lines in CARDS.items():
            (self.copy / name).write_text(f"BEGIN:VCARD\n{lines}END:VCARD\n", newline="\r\n")

    def twin(self):
        """A copy to disturb."""
        other = World.__new__(World)
        other.__dict__.update(self.__dict__)
        folder = Path(tempfile.mkdtemp(prefix="tandolin-fault-"))
        other.copy = folder / "world"
        shutil.copytree(self.copy, other.copy, symlinks=True, ignore=shutil.ignore_patterns("socket"))
        for manifest in other.copy.glob("state/halverntandolin/backups/*/manifest.json"):
            # A restore looks for both sides where the run found them.
            manifest.write_text(manifest.read_text().replace(f"{self.copy}/", f"{other.copy}/"))
        return other

    def remove(self):
        shutil.rmtree(self.copy.parent if self.copy.name == "world" else self.copy)

    def task(self, around=(), also=()):
        return self.call([*around, self.program, *self.arguments_of_task, *also])

    def call(self, command):
        done = subprocess.run(command, cwd=self.copy, env=self.environment(), capture_output=True, timeout=TIMEOUT)
        return self.told(done.returncode, done.stdout, done.stderr)

    def told(self, status, out, errors):
        out, errors = (text.decode(errors="replace").replace(f"{self.copy}/", "") for text in (out, errors))
        try:
            document = json.loads(out)
        except ValueError:
            document = None
        return {"exit": status, "json": document, "errors": errors}

    @staticmethod
    def expect_clean(outcome, allowed=(0,)):
        if outcome["exit"] not in allowed:
            raise Mismatch(f"a clean run ends {outcome['exit']}: {outcome['errors'][-400:]}")

    def copies(self):
        folder = self.copy / "state/halverntandolin/backups"
        return sorted(p.name for p in folder.iterdir() if p.name[0] != ".") if folder.exists() else []

    def files(self):
        """All files that matter, as far as two runs write them alike."""
        return {name: bytes_ for name, bytes_ in tree(self.copy).items() if not name.startswith("state/") and not TEMPORARY.search(name)}

    def environment(self):
        # Looking for leaks needs the very interface that strace holds.
        return super().environment() | {"ASAN_OPTIONS": "verify_asan_link_order=0:detect_leaks=0"}

    def sides(self):
        """Both sides without what a run that died could not remove."""
        return {side: {n: b for n, b in files.items() if not TEMPORARY.search(n)} for side, files in self.state().items()}


def expect_same(what, actual, wanted):
    """Two states, compared file by file; what differs is named."""
    for side in wanted:
        expect(f"{what}: {side}", [(name, actual[side].get(name)) for name in differences(actual[side], wanted[side])], [])


def comparable(name, content):
    """Without what differs between two runs that do the same: moments, and the identifiers of new items."""
    if name.startswith("organizer/"):
        return MOMENT.sub(rb"\1", content)
    return content


def role(name):
    """New items bear random names, and objects take the numbers that are free."""
    return "organizer/new" if CREATED.search(name) else re.sub(r"/\d+\.vc[sf]$", "/object", name)


def known_contents(*states):
    """What each file may hold, by its role: whole contents only."""
    known = {}
    for files in states:
        for name, content in files.items():
            known.setdefault(role(name), set()).add(comparable(name, content))
    return known


def is_whole_log(content):
    """As many lines as its head counts."""
    text = content.decode()
    head = re.match(r"Zusammenfassung\r\n\S+ Daten:\t\t(\d+)\r\n", text)
    rows = len(re.findall(r"^(?:Mobile|PIM)\t", text, re.M))
    return bool(head) and int(head[1]) == rows and text.endswith("\r\n")


def is_whole_status(content):
    return bool(re.fullmatch(rb"MAXIMUM-RECORDS:\d+\r\nTOTAL-RECORDS:\d+\r\nLAST-USED-INDEX:\d+\r\n", content))


# What depends on how far a run came is judged by its form; all else holds the content of before or of afterwards.
BY_FORM = {"home/logFile.rtf": is_whole_log, "phone/telecom/cal/info.log": is_whole_status,
           "phone/telecom/pb/info.log": is_whole_status}


def check_whole(world, known):
    for name, content in world.files().items():
        whole = BY_FORM[name](content) if name in BY_FORM else comparable(name, content) in known.get(role(name), ())
        if not whole:
            raise Mismatch(f"torn: {name} holds {content[:120]!r} ({len(content)} bytes)")


def check_copies(world):
    """A copy that bears its name is complete, its journal can be read, and it holds what was there before."""
    backups = world.copy / "state/halverntandolin/backups"
    outcome = world.call([world.program, "--list-backups", "--json"])
    expect("the copies can be listed", (outcome["exit"], outcome["json"] and outcome["json"]["errors"]), (0, []))
    if not world.restores:
        for name in world.copies():
            for side, files in world.untouched.items():
                copied = {n: b for n, b in tree(backups / name / side).items()}
                expect(f"copy of the {side}", copied.items() <= files.items() and len(copied) >= len(files) - 4, True)


def entries(state):
    """Text (small and capital letters are one) and start of every entry, and name of every contact, counted, for each side."""
    found = {}
    for side, names in (("phone", "DESCRIPTION|SUMMARY"), ("organizer", "SUMMARY")):
        texts = [content.decode(errors="replace") for name, content in state[side].items()
                 if name.lower().endswith((".vcs", ".ics", ".vcf")) and not TEMPORARY.search(name)]
        found[side] = Counter(entry for text in texts if (entry := entry_of(text, names)))
    return found


def entry_of(text, names):
    if text.startswith("BEGIN:VCARD"):
        name = re.search(r"^N[^:\n]*:(.*?);*\r?$", text, re.M)
        return (name.group(1).casefold(), "contact") if name else None
    event = text[text.find("BEGIN:VEVENT"):]
    subject = re.search(rf"^(?:{names})[^:\n]*:(.*?)\r?$", event, re.M)
    start = re.search(r"^DTSTART[^:\n]*:(\w+?)Z?\r?$", event, re.M)
    return (subject.group(1).casefold(), start.group(1)) if subject and start else None
