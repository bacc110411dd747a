"""Random sequences of the program's commands, with a model of the values that each of them leaves."""

import dataclasses
import os
import random

POLICY = ("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc."
          "\\Unified Communications\\VentrixUC]\r\n\"%s\"=\"%s\"\r\n")
USER_FILE, BACKUP = "config/lumoraLocalConfig.dat", "config/lumoraLocalConfig_backup.dat"
RUBBISH = b"damaged"
USER_KEYS = ("alpha", "beta", "gamma", "delta")
STORES = {"Foreign": 40, "Second": 50}
POLICIES = ("one", "two")
ALLOWED, DOMAIN = "allowurlprovisioning", "servicesdomain"


@dataclasses.dataclass(frozen=True)
class Step:
    """Commands of one process that succeed together, and the values of all keys afterwards."""

    lines: tuple
    state: dict
    # How many of the lines report that they are done. None: the step ends with the process.
    reports: int = 1


@dataclasses.dataclass(frozen=True)
class Process:
    arguments: tuple
    steps: tuple
    # Whether the steps are lines of standard input.
    is_shell: bool = False


@dataclasses.dataclass(frozen=True)
class Outside:
    """What another program does to the profile between two processes: writes a file, or copies one."""

    target: str
    source: str = ""


class Sequence:
    """A random list of processes, with a model of what each command changes. The groups of keys do not overlap."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.seed = seed
        self.values = {}
        self.values_made = 0
        self.moved_aside = 0
        # After `stop` and `start` the user's file has no timer, and a refresh drops a backup that waits for its timer: the
        # backup may be older until the next process writes.
        self.backup_is_old = False
        self.stores = set()
        self.is_provisioned = False
        # Files that the commands read, by name.
        self.inputs = {}
        self.parts = []
        while len(self.parts) < 7:
            self.random.choices((self.add_command, self.add_shell, self.add_damage, self.add_restore), (6, 3, 1, 1))[0]()

    def new_value(self, longest=9000):
        self.values_made += 1
        return f"v{self.values_made}" + "x" * min(longest, self.random.choice((0, 0, 0, 300, 9000)))

    def new_input(self, name, content):
        self.inputs[f"{self.values_made}-{name}"] = content
        return f"{{inputs}}/{self.values_made}-{name}"

    def step(self, *lines, reports=1):
        return Step(lines, dict(self.values), reports)

    def add_command(self):
        line = self.choose_change(False)
        words = line.split(" ")
        adds_store = words[0] == "add-store"
        step = self.step(line, reports=0 if adds_store else 1)
        if adds_store:
            words = ["--store", words[1], "get", "From" + words[1].split(":")[1]]
        self.parts.append(Process(tuple(words), (step,)))

    def add_shell(self):
        steps = []
        for _ in range(self.random.randint(2, 7)):
            kind = self.random.randrange(10)
            if kind < 6:
                steps.append(self.step(self.choose_change(True)))
            elif kind == 6:
                key = self.random.choice(USER_KEYS)
                self.values[key] = self.new_value()
                steps.append(self.step(f"set --worker {key} {self.values[key]}", "wait", reports=2))
            else:
                lines = self.random.choice((("refresh",), ("stop", "start"), ("wait",), ("memory Volatile v",)))
                steps.append(self.step(*lines, reports=len(lines)))
                self.backup_is_old |= "stop" in lines or "refresh" in lines
        self.parts.append(Process(("shell",), tuple(steps), True))

    def add_damage(self):
        """Damages one of the user's two files. The next start reads the other one, which has the same values."""
        if self.moved_aside < 3 and any(key in self.values for key in USER_KEYS):
            self.moved_aside += 1
            if self.backup_is_old:
                self.add_command_that_writes()
            self.parts.append(Outside(self.random.choice((USER_FILE, BACKUP))))
            self.add_command_that_writes()

    def add_restore(self):
        """Leaves a copy of the user's file as if it had been moved aside, and puts it back after another change."""
        if self.moved_aside or not any(key in self.values for key in USER_KEYS):
            return
        self.moved_aside += 3
        before = dict(self.values)
        self.parts.append(Outside(USER_FILE + ".unreadable", USER_FILE))
        self.add_command_that_writes()
        self.values = before
        self.parts.append(Process(("restore", os.path.basename(USER_FILE) + ".unreadable"), (self.step(""),)))

    def add_command_that_writes(self):
        self.backup_is_old = False
        key = self.random.choice(USER_KEYS)
        self.values[key] = self.new_value()
        self.parts.append(Process(("set", key, self.values[key]), (self.step(""),)))

    def choose_change(self, in_shell):
        """Applies a random change to the model and returns its command."""
        held = [key for key in USER_KEYS if key in self.values]
        changes = [(6, self.set), (2, self.add_store), (1, self.import_policy), (1, self.reset_data)]
        changes.append((1, self.reset_provisioning if self.is_provisioned else self.provision))
        if held:
            changes.append((2, lambda: self.reset(self.random.choice(held))))
        if self.stores and not in_shell:
            changes.append((1, self.remove_store))
        if held and not in_shell:
            changes.append((1, self.load))
        weights, functions = zip(*changes)
        return self.random.choices(functions, weights)[0]()

    def set(self):
        key = self.random.choice(USER_KEYS)
        self.values[key] = self.new_value()
        return f"set {key} {self.values[key]}"

    def load(self):
        text = ""
        for key in self.random.sample(USER_KEYS, 2):
            self.values[key] = self.new_value()
            text += f'{key} = "{self.values[key]}"\n'
        return "load " + self.new_input("dump", text)

    def reset(self, key):
        del self.values[key]
        return f"reset {key}"

    def add_store(self):
        name = self.random.choice(list(STORES))
        self.stores.add(name)
        value = self.values["from" + name.lower()] = self.new_value()
        file = self.new_input(f"{name}.xml", f"<Config><Group><From{name}>{value}</From{name}></Group></Config>")
        return f"add-store {file}:{name}:{STORES[name]}:cache"

    def remove_store(self):
        name = self.random.choice(sorted(self.stores))
        self.stores.remove(name)
        self.values.pop("from" + name.lower())
        return f"remove-store {name}"

    def provision(self):
        self.is_provisioned = True
        self.values[DOMAIN], self.values[ALLOWED] = self.new_value(200), "False"
        return f"provision lumora://provision?ServicesDomain={self.values[DOMAIN]}"

    def reset_provisioning(self):
        self.is_provisioned = False
        self.values.pop(ALLOWED)
        return "reset-provisioning"

    def import_policy(self):
        name = self.random.choice(POLICIES)
        value = self.values["policy" + name] = self.new_value(300)
        self.values_made += 1
        self.inputs[f"{self.values_made}/{name}.reg"] = POLICY % ("Policy" + name, value)
        return f"import-policy {{inputs}}/{self.values_made}/{name}.reg"

    def reset_data(self):
        self.values = {key: value for key, value in self.values.items() if key == DOMAIN}
        self.stores.clear()
        self.is_provisioned = False
        self.moved_aside = 0
        return "reset-data --yes"
