"""Another program that changes the folder of the calendar or of the contacts while a run stands still."""

from worlds import CREATED, expect

NEW = ("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//other//EN\r\nBEGIN:VEVENT\r\nUID:other\r\nDTSTAMP:20270101T080000Z\r\n"
       "DTSTART:20270309T090000Z\r\nDTEND:20270309T100000Z\r\nSUMMARY:Other\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")


NEW_CARD = ("BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:-//other//other//EN\r\nUID:other\r\nFN:Other\r\nN:Other;;;;\r\nEND:VCARD\r\n")


class OtherProgram:
    """Changes a folder of items or of cards, and knows what must be found of it afterwards."""

    def __init__(self, folder):
        self.folder = folder
        self.suffix, self.new, self.end = (".vcf", NEW_CARD, b"END:VCARD") if "contacts" in folder.parts else (".ics", NEW, b"END:VEVENT")
        self.wrote, self.gone = {}, set()

    def victim(self):
        """Rather an item that the disturbed run works on: one that a run has made, or one that it has to copy."""
        names = sorted(path.name for path in self.folder.iterdir() if path.suffix == self.suffix)
        return min(names, key=lambda name: (not CREATED.search(name), name)) if names else None

    def write(self, name, content):
        self.wrote[name] = content
        aside = self.folder / "other.tmp"
        aside.write_bytes(content)
        aside.rename(self.folder / name)

    def take(self, name):
        self.gone.add(name)
        (self.folder / name).unlink()

    def adds(self):
        self.write(f"other{self.suffix}", self.new.encode())

    def edits(self):
        if name := self.victim():
            self.write(name, (self.folder / name).read_bytes().replace(self.end, b"X-ELSEWHERE:1\r\n" + self.end))

    def writes_in_place(self):
        if name := self.victim():
            with open(self.folder / name, "r+b") as file:
                content = file.read().replace(self.end, b"X-OTHER:1\r\n" + self.end)
                file.seek(0)
                file.write(content)
            self.wrote[name] = content

    def removes(self):
        if name := self.victim():
            self.take(name)

    def renames(self):
        if name := self.victim():
            content = (self.folder / name).read_bytes()
            self.gone.add(name)
            renamed = f"renamed{self.suffix}"
            (self.folder / name).rename(self.folder / renamed)
            self.wrote[renamed] = content

    def empties_a_file(self):
        if name := self.victim():
            (self.folder / name).write_bytes(b"")
            self.wrote[name] = b""

    def empties_the_folder(self):
        for path in sorted(self.folder.glob(f"*{self.suffix}")):
            self.take(path.name)

    def check(self, what):
        for name, content in self.wrote.items():
            path = self.folder / name
            expect(f"{what}: {name} of the other program", path.read_bytes() if path.exists() else None, content)
        expect(f"{what}: what it removed stays away", [name for name in self.gone if (self.folder / name).exists()], [])


CHANGES = [OtherProgram.adds, OtherProgram.edits, OtherProgram.writes_in_place, OtherProgram.removes, OtherProgram.renames,
           OtherProgram.empties_a_file, OtherProgram.empties_the_folder]
