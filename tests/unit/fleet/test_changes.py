import unittest

from modules import changes


class Changes(unittest.TestCase):
    def test_texts_of_values(self):
        rows = [("dhcp", "dhcp"), (30, "30"), (0.7, "0.7"), (1, "1"), ("", None), (None, None)]
        for value, text in rows:
            with self.subTest(value=value):
                self.assertEqual(changes.text_of(value), text)
                self.assertIs(type(changes.text_of(value)), type(text))

    def test_values_without_a_text(self):
        for value in (True, False, [], {"a": 1}):
            with self.subTest(value=value), self.assertRaises(ValueError):
                changes.text_of(value)

    def test_only_what_differs_changes(self):
        stored = {"a": "1", "b": "2", "other": "x"}
        rows = [
            ("nothing wanted", {}, []),
            ("same", {"a": "1"}, []),
            ("another value", {"b": "3"}, [("b", "2", "3")]),
            ("new key", {"c": "4"}, [("c", None, "4")]),
            ("removed", {"a": None}, [("a", "1", None)]),
            ("removed before", {"d": None}, []),
            (
                "in the order of the keys",
                {"b": "3", "a": None},
                [("a", "1", None), ("b", "2", "3")],
            ),
        ]
        for name, wanted, expected in rows:
            with self.subTest(name):
                found = changes.wanted_changes(stored, wanted)
                self.assertEqual(
                    [(item["key"], item["before"], item["after"]) for item in found], expected
                )

    def test_commands(self):
        change = {"key": "a", "before": None, "after": "--force"}
        self.assertEqual(
            changes.command_for(change, ["--dry-run"]), ["set", "--dry-run", "a", "--force"]
        )
        self.assertEqual(
            changes.command_for({**change, "after": None}, ["--force"]), ["unset", "--force", "a"]
        )

    def test_settings_after_the_changes(self):
        stored = {"a": "1", "b": "2"}
        wanted = {"a": None, "b": "3", "c": "4"}
        after = changes.after_changes(stored, changes.wanted_changes(stored, wanted))
        self.assertEqual(after, {"b": "3", "c": "4"})
        self.assertEqual(stored, {"a": "1", "b": "2"})
        self.assertEqual(changes.lines_of(after), "b=3\nc=4\n")


if __name__ == "__main__":
    unittest.main()
