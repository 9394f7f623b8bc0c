"""Chromium without a window, by its own remote control: commands and events are lines of JSON in two pipes."""

import base64
import fcntl
import json
import os
import select
import subprocess
import time

PROGRAM = "chromium-headless-shell"
# Long enough for a busy machine. It only ends a test that would never end.
LONGEST_WAIT = 60


class Browser:
    """A browser with one page. `events` has all that the page has reported since it was last opened."""

    def __init__(self, folder):
        """The folder is the browser's own, for what it stores."""
        commands, self._commands = os.pipe()
        self._reports, reports = os.pipe()
        # Chromium wants the descriptors 3 and 4. Numbers above these cannot overwrite each other.
        inherited = [fcntl.fcntl(pipe, fcntl.F_DUPFD, 10) for pipe in (commands, reports)]
        options = ["--headless", "--remote-debugging-pipe", "--user-data-dir=" + folder, "--lang=en-US",
                   "--no-first-run", "--disable-gpu", "--disable-background-networking", "about:blank"]
        if os.geteuid() == 0:
            # Chromium's sandbox refuses to run as root.
            options.insert(0, "--no-sandbox")
        self._process = subprocess.Popen(
            ["bash", "-c", 'exec 3<&"$1" 4>&"$2"; shift 2; exec "$@"', "bash", *map(str, inherited), PROGRAM, *options],
            pass_fds=inherited, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env=dict(os.environ, HOME=folder))
        for pipe in (commands, reports, *inherited):
            os.close(pipe)
        self._received = b""
        self._last = 0
        self._session = None
        self.events = []
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self._session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Runtime", "Log"):
            self.ask(domain + ".enable")

    def close(self):
        self._session = None
        self.ask("Browser.close")
        self._process.wait(LONGEST_WAIT)

    def _receive(self, deadline):
        """Returns the next message."""
        while b"\0" not in self._received:
            readable, _, _ = select.select([self._reports], [], [], max(0, deadline - time.monotonic()))
            if not readable:
                raise TimeoutError("the browser does not answer")
            part = os.read(self._reports, 1 << 20)
            if not part:
                raise ConnectionError(f"{PROGRAM} has ended")
            self._received += part
        message, _, self._received = self._received.partition(b"\0")
        return json.loads(message)

    def ask(self, method, **parameters):
        self._last += 1
        command = {"id": self._last, "method": method, "params": parameters}
        if self._session:
            command["sessionId"] = self._session
        os.write(self._commands, json.dumps(command).encode() + b"\0")
        deadline = time.monotonic() + LONGEST_WAIT
        while True:
            message = self._receive(deadline)
            if "method" in message:
                self.events.append(message)
            elif message["id"] == self._last:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']['message']}")
                return message["result"]

    def wait_for(self, method):
        """Waits until the page has reported this event."""
        deadline = time.monotonic() + LONGEST_WAIT
        while not any(event["method"] == method for event in self.events):
            message = self._receive(deadline)
            if "method" in message:
                self.events.append(message)

    def open(self, url, script=True):
        """Opens a page, with or without its script, in a dark window of usual size."""
        self.ask("Page.navigate", url="about:blank")
        self.ask("Emulation.setScriptExecutionDisabled", value=not script)
        self.resize(1280, 800)
        self.prefer("dark")
        self.events.clear()
        self.ask("Page.navigate", url=url)
        self.wait_for("Page.loadEventFired")

    def resize(self, width, height):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def prefer(self, scheme):
        """Makes the user one who prefers dark or light pages."""
        self.ask("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def value(self, expression):
        """Returns what a JavaScript expression gives in the page. A promise is waited for."""
        result = self.ask("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']['exception'].get('description')}")
        return result["result"].get("value")

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.ask("Page.captureScreenshot")["data"]))

    def requests(self):
        """The addresses of all that the page has asked for, itself included."""
        return [event["params"]["request"]["url"] for event in self.events
                if event["method"] == "Network.requestWillBeSent"]

    def console(self):
        """What the page and the browser have written to the console, and what ended a script."""
        texts = []
        for event in self.events:
            if event["method"] == "Log.entryAdded":
                texts.append(event["params"]["entry"]["text"])
            elif event["method"] == "Runtime.consoleAPICalled":
                texts.append(str(event["params"]["args"]))
            elif event["method"] == "Runtime.exceptionThrown":
                texts.append(str(event["params"]["exceptionDetails"]))
        return texts
