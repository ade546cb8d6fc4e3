# SPDX-License-Identifier: MIT
"""Headless Chromium, as the tests of pages start it."""
import html
import json
import os
import re
import shutil
import signal
import subprocess
import tempfile

NOT_INSTALLED = 77  # the status of a test that is skipped

# A browser now and then hangs while it starts, or at what it does for itself on the network: it is
# started again then, with a new profile and more time. A page that never ends hangs every time.
SECONDS = (20, 40, 80, 160)

SWITCHES = ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
            "--no-default-browser-check", "--disable-background-networking", "--disable-component-update",
            "--disable-default-apps", "--disable-extensions", "--disable-sync", "--metrics-recording-only",
            "--password-store=basic", "--window-size=1700,900")


def find():
    """The program's path, or None, which is told."""
    names = ("chromium", "chromium-browser", "google-chrome")
    path = next((found for found in map(shutil.which, names) if found), None)
    if path is None:
        print("Chromium is not installed")
    return path


def run(chromium, *arguments):
    """What Chromium writes on its standard output."""
    for seconds in SECONDS:
        with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
            browser = subprocess.Popen([chromium, *SWITCHES, f"--user-data-dir={profile}", *map(str, arguments)],
                                       stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                       text=True, start_new_session=True)
            try:
                output, errors = browser.communicate(timeout=seconds)
            except subprocess.TimeoutExpired:
                os.killpg(browser.pid, signal.SIGKILL)
                browser.communicate()
                continue
            assert browser.returncode == 0, errors[-3000:]
            return output
    raise AssertionError(f"Chromium did not end, though started again: it had {SECONDS} seconds")


def seen_on(chromium, page, *arguments):
    """What the page at this path notes in its element "seen"."""
    document = run(chromium, *arguments, "--dump-dom", page.as_uri())
    found = re.search(r'<pre id="seen">(.*?)</pre>', document, re.S)
    assert found, document[-3000:]
    return json.loads(html.unescape(found[1]))
