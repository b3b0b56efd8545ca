"""The list of mutants that no test can tell from the original, or only by never ending, with the reasons."""

import collections
import os

from programs import SOURCE_DIR

NEVER_ENDS = "never ends: "  # how the reason begins for a mutant that times out
LIST = os.path.join(SOURCE_DIR, "verification", "mutation", "equivalent.txt")


class Equivalent:
    def __init__(self):
        self.listed = collections.Counter()
        self.reasons = {}
        self.met = collections.Counter()
        with open(LIST, encoding="utf-8") as stream:
            for line in stream:
                if line.strip() and not line.startswith("#"):
                    *key, reason = (part.strip() for part in line.rstrip("\n").split(" ¦ "))
                    self.listed[tuple(key)] += 1
                    self.reasons[tuple(key)] = reason

    def reason(self, mutant, timed_out=False):
        """Why a mutant survives or times out; None if no unused line of the list gives a reason."""
        key = (mutant.file, mutant.before.strip(), mutant.after.strip())
        if self.reasons.get(key, "").startswith(NEVER_ENDS) != timed_out:
            return None
        self.met[key] += 1
        return self.reasons[key] if self.met[key] <= self.listed[key] else None

    def stale(self, mutants):
        """Lines of the list that no mutant matched, among those for the files of these mutants."""
        files = {mutant.file for mutant in mutants}
        return [key for key in self.listed if key[0] in files and self.met[key] < self.listed[key]]
