"""Runs a program and collects what it prints."""

import subprocess


def run(command, directory, timeout):
    """The exit status (None after a timeout, negative after a signal) and the output."""
    try:
        done = subprocess.run(command, cwd=directory, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=timeout,
                              check=False, text=True, errors="replace")
        return done.returncode, done.stdout
    except subprocess.TimeoutExpired as expired:
        return None, str(expired)
