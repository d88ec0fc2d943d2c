import csv
import html.parser
import unittest

from fleettest import FleetTest


class Table(html.parser.HTMLParser):
    """The cells of a page's table, and the resources that it loads."""

    def __init__(self, text):
        super().__init__()
        self.rows, self.resources, self.in_cell = [], [], False
        self.feed(text)

    def handle_starttag(self, tag, attrs):
        self.resources += [value for name, value in attrs if name in ("src", "href")]
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.rows[-1].append("")
            self.in_cell = True

    def handle_endtag(self, tag):
        if tag in ("td", "th"):
            self.in_cell = False

    def handle_data(self, data):
        if self.in_cell:
            self.rows[-1][-1] += data


class Status(FleetTest):
    def read_tables(self):
        with open(self.desk.folder / "panels.csv", newline="", encoding="utf-8") as file:
            rows = list(csv.reader(file))
        page = Table((self.desk.folder / "panels.html").read_text(encoding="utf-8"))
        return rows, page

    def test_each_panel_has_a_row(self):
        hostile = '=1+1,"<script>&\\'
        gone, strange, empty = self.panel(2), self.panel(3), self.panel(4)
        before = self.plant.states()
        gone.go_away()
        strange.shell("cp -a /opt/talmero/bios/model /root")
        strange.shell(f"printf '%s\\n' '{hostile}' >/opt/talmero/bios/model")
        empty.shell("mv /usr/bin/talmero-doctor /root")
        run = self.desk.play("status")
        strange.shell("mv /root/model /opt/talmero/bios/model")
        empty.shell("mv /root/talmero-doctor /usr/bin")
        gone.come_back()
        self.assert_run(run, changed=[])
        self.assertEqual(self.plant.states(), before)

        rows, page = self.read_tables()
        self.assertEqual([row[0] for row in rows], ["panel", *self.names])
        self.assertEqual({len(row) for row in rows}, {len(rows[0])})
        states = {row[0]: row[2] for row in rows[1:]}
        self.assertEqual(states.pop(gone.name), "does not answer")
        self.assertEqual(states.pop(empty.name), "cannot be asked")
        self.assertEqual(set(states.values()), {"errors"})  # no panel has a display here
        self.assertEqual(rows[3][3], "'" + hostile)
        self.assertEqual(rows[1][3:7], ["RV-K21T", "TALMERO", "12", "3"])
        self.assertEqual(rows[1][1].split()[0], "hall_1")
        self.assertIn("display: ", rows[1][-1])

        self.assertEqual(page.resources, [])
        self.assertEqual(page.rows[3][3], hostile)
        unquoted = [
            [cell.removeprefix("'") if cell[1:2] == "=" else cell for cell in row] for row in rows
        ]
        self.assertEqual(
            [[" ".join(cell.split()) for cell in row] for row in page.rows],
            [[" ".join(cell.split()) for cell in row] for row in unquoted],
        )


if __name__ == "__main__":
    unittest.main()
