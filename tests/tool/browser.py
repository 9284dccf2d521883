"""A headless Chromium that is driven over WebDriver by chromedriver, for tests of pages."""
import json
import pathlib
import shutil
import subprocess
import tempfile
import urllib.request

FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync", "--hide-scrollbars"]


def available():
    return bool(shutil.which("chromium") and shutil.which("chromedriver"))


class Browser:
    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        words = "started successfully on port "
        line = next(line for line in self.driver.stdout if words in line)
        self.base = f"http://127.0.0.1:{line.split(words)[1].strip().rstrip('.')}"
        options = {"binary": shutil.which("chromium"), "args": FLAGS + [f"--user-data-dir={self.profile.name}"]}
        answer = self.post("/session", {"capabilities": {"alwaysMatch": {
            "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}}})
        self.base += f"/session/{answer['sessionId']}"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        urllib.request.urlopen(urllib.request.Request(self.base, method="DELETE"), timeout=60).close()
        self.driver.terminate()
        self.driver.wait()
        self.profile.cleanup()

    def post(self, path, body):
        request = urllib.request.Request(self.base + path, json.dumps(body).encode(),
                                         {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=120) as answer:
            return json.load(answer)["value"]

    def open(self, path):
        self.post("/url", {"url": pathlib.Path(path).resolve().as_uri()})

    def run(self, script):
        """What the body of a function returns in the page."""
        return self.post("/execute/sync", {"script": script, "args": []})

    def console(self):
        """Messages since the last call, but for advice on how a test reads pixels."""
        entries = self.post("/se/log", {"type": "browser"})
        return [entry["message"] for entry in entries if entry["source"] != "rendering"]

    def requests(self):
        """The addresses that were asked for since the last call, but for data: and the browser's own pages."""
        entries = [json.loads(entry["message"])["message"] for entry in self.post("/se/log", {"type": "performance"})]
        urls = [entry["params"]["request"]["url"] for entry in entries
                if entry["method"] == "Network.requestWillBeSent"]
        return [url for url in urls if not url.startswith(("data:", "chrome:", "about:"))]

    def emulate(self, **media):
        """emulate(media="print"), emulate(features=[{"name": "prefers-color-scheme", "value": "dark"}])"""
        self.post("/goog/cdp/execute", {"cmd": "Emulation.setEmulatedMedia", "params": media})

    def resize(self, width, height):
        self.post("/goog/cdp/execute", {"cmd": "Emulation.setDeviceMetricsOverride", "params": {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}})
        # The page hears of it with its next frame, and may draw in the one after that.
        self.post("/execute/async", {"args": [], "script":
                  "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(() => done()));"})

    def press(self, key):
        self.post("/actions", {"actions": [{"type": "key", "id": "keys", "actions": [
            {"type": "keyDown", "value": key}, {"type": "keyUp", "value": key}]}]})
