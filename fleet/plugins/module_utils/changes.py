"""Which settings of a panel differ from the wanted ones."""


def text_of(value):
    """The text that the settings file holds for a value of a playbook; None removes the key.

    YAML reads yes, no, on and off as truth values, which no setting has: ValueError.
    """
    if value is None or value == "":
        return None
    if isinstance(value, (bool, dict, list)):
        raise ValueError("write a text, a number, or null to remove the key")
    return str(value)


def wanted_changes(stored, wanted):
    """The changes that lead from the stored settings to the wanted ones, in the order of the keys.

    stored: all keys of the panel with their texts.
    wanted: the texts of some keys, None for one to remove.
    """
    return [
        {"key": key, "before": stored.get(key), "after": value}
        for key, value in sorted(wanted.items())
        if stored.get(key) != value
    ]


def command_for(change, options):
    """The arguments of talmero-settings for a change."""
    if change["after"] is None:
        return ["unset", *options, change["key"]]
    return ["set", *options, change["key"], change["after"]]


def lines_of(settings):
    """Settings as lines of text, for a person."""
    return "".join(f"{key}={value}\n" for key, value in sorted(settings.items()))


def after_changes(stored, changes):
    """The settings once the changes are made."""
    result = dict(stored)
    for change in changes:
        if change["after"] is None:
            result.pop(change["key"], None)
        else:
            result[change["key"]] = change["after"]
    return result
