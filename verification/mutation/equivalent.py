"""The list of mutants that cannot be told from the original, and what it says of those that survive."""

import collections
import os

from programs import SOURCE_DIR

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

    def reason(self, mutant):
        """Why a survivor is equivalent; None when no line is left that says so."""
        key = (mutant.file, mutant.before.strip(), mutant.after.strip())
        self.met[key] += 1
        return self.reasons[key] if self.met[key] <= self.listed[key] else None

    def stale(self, mutants):
        """Lines about these mutants' files that no survivor matched."""
        files = {mutant.file for mutant in mutants}
        return [key for key in self.listed if key[0] in files and self.met[key] < self.listed[key]]
