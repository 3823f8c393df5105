"""Other programs on the organizer that a run has written: each must read it, and none may find fault with it.

A peer gives triples of what was looked at, what it is, and what it must be.
"""

import subprocess

from files import tree

TIMEOUT = 60

KHAL = """[calendars]
[[organizer]]
path = {copy}/organizer/calendar
[sqlite]
path = {copy}/khal.db
[locale]
local_timezone = {zone}
default_timezone = {zone}
timeformat = %H:%M
dateformat = %Y-%m-%d
longdateformat = %Y-%m-%d
datetimeformat = %Y-%m-%d %H:%M
longdatetimeformat = %Y-%m-%d %H:%M
"""

KHARD = """[addressbooks]
[[Kontakte]]
path = {copy}/organizer/contacts/Kontakte
"""

# The collections are named: below the organizer vdirsyncer would take "contacts" for a calendar.
VDIRSYNCER = """[general]
status_path = "{copy}/vdirsyncer/status"
""" + "".join(f"""[pair {pair}]
a = "{pair}_here"
b = "{pair}_there"
collections = ["{collection}"]
[storage {pair}_here]
type = "filesystem"
path = "{{copy}}/{path}"
fileext = "{extension}"
[storage {pair}_there]
type = "filesystem"
path = "{{copy}}/vdirsyncer/{path}"
fileext = "{extension}"
""" for pair, path, collection, extension in (("events", "organizer", "calendar", ".ics"),
                                               ("cards", "organizer/contacts", "Kontakte", ".vcf")))


class Peer:
    """A program with a configuration of its own below the scenario's copy."""

    def __init__(self, scenario, name, config):
        self.name = name
        self.environment = scenario.environment()
        self.config = scenario.copy / f"{name}.conf"
        self.config.write_text(config.format(copy=scenario.copy, zone=self.environment["TZ"]))

    def run(self, *words):
        done = subprocess.run([self.name, "-c", str(self.config), *words], env=self.environment, capture_output=True,
                              stdin=subprocess.DEVNULL, timeout=TIMEOUT)
        return done.returncode, done.stdout.decode(), done.stderr.decode()


def khal(scenario):
    """expected/khal.txt: the days, then what khal lists for them."""
    days, *wanted = (scenario.folder / "expected/khal.txt").read_text().splitlines()
    status, out, errors = Peer(scenario, "khal", KHAL).run(
        "list", "--day-format", "", "--format", "{start-date} {start-time} {title}", *days.split())
    yield "khal's exit status", (status, errors), (0, "")
    yield "khal's list", [line for line in out.splitlines() if line], wanted


def khard(scenario):
    """expected/khard.txt: the fields, then what khard lists of each contact."""
    fields, *wanted = (scenario.folder / "expected/khard.txt").read_text().splitlines()
    status, out, errors = Peer(scenario, "khard", KHARD).run("list", "--parsable", "--fields", fields)
    yield "khard's exit status", (status, errors), (0, "")
    yield "khard's list", [line.rstrip("\t") for line in out.splitlines()], wanted


def vdirsyncer(scenario):
    """All events and cards arrive elsewhere as they are, and no sync touches what is here."""
    peer = Peer(scenario, "vdirsyncer", VDIRSYNCER)
    here = scenario.copy / "organizer"
    there = scenario.copy / "vdirsyncer/organizer"
    before = tree(here)
    for collection in ("calendar", "contacts/Kontakte"):
        (there / collection).mkdir(parents=True)
    status, _, errors = peer.run("discover")
    yield "vdirsyncer's exit status of discover", status, 0
    for copied in (len(before), 0):
        status, out, errors = peer.run("sync")
        said = (out + errors).splitlines()
        yield "vdirsyncer's exit status", (status, said if status else []), (0, [])
        others = [line for line in said if not line.startswith(("Syncing ", "Copying (uploading) "))]
        yield "what else vdirsyncer says", others, []
        yield "items that vdirsyncer copies", len([line for line in said if line.startswith("Copying")]), copied
        yield "the organizer after vdirsyncer", tree(here), before
        yield "what arrived", sorted(tree(there).values()), sorted(before.values())


def checks(scenario):
    """All peers that the scenario asks for."""
    for name, peer in (("khal", khal), ("khard", khard)):
        if (scenario.folder / f"expected/{name}.txt").exists():
            yield from peer(scenario)
    if scenario.result.get("vdirsyncer"):
        yield from vdirsyncer(scenario)
