"""The copy of the tree in which mutants are built and tested, so that the tree itself is never changed.

The copy lies below build/mutate. Each start makes its files those of the tree again, by content: what an interrupted
run left changed is put right, and is newer than what was built of it. One run at a time uses it.
"""
import fcntl
import hashlib
import json
import os
import re
import subprocess
import sys


class Workshop:
    def __init__(self, root):
        self.root = root
        self.home = os.path.join(root, "build", "mutate")
        self.tree = os.path.join(self.home, "tree")
        os.makedirs(self.tree, exist_ok=True)
        self._lock = open(os.path.join(self.home, "lock"), "w")
        try:
            fcntl.flock(self._lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError:
            sys.exit("error: another run of scripts/mutate uses build/mutate")
        self.includers = {}
        self.state = self._sync()

    def path(self, *parts):
        return os.path.join(self.tree, *parts)

    def read(self, path):
        with open(self.path(path), encoding="utf-8", newline="") as file:
            return file.read()

    def write(self, path, text):
        """The new content, with the time of now: that is what makes it be built again."""
        with open(self.path(path), "w", encoding="utf-8", newline="") as file:
            file.write(text)

    def _sync(self):
        """Makes the copy the tree's; gives a name for its state."""
        listed = subprocess.check_output(["git", "ls-files", "-coz", "--exclude-standard"], cwd=self.root)
        paths = sorted(os.fsdecode(p) for p in listed.split(b"\0") if p)
        state = hashlib.sha256()
        wanted = set()
        for path in paths:
            original, copy = os.path.join(self.root, path), self.path(path)
            if os.path.islink(original) or not os.path.isfile(original):
                continue
            wanted.add(path)
            with open(original, "rb") as file:
                content = file.read()
            state.update(path.encode() + b"\0" + hashlib.sha256(content).digest())
            if os.path.exists(copy):
                with open(copy, "rb") as file:
                    if file.read() == content:
                        continue
            os.makedirs(os.path.dirname(copy), exist_ok=True)
            with open(copy, "wb") as file:
                file.write(content)
            os.chmod(copy, os.stat(original).st_mode & 0o777)
        for folder, folders, names in os.walk(self.tree):
            if folder == self.tree:
                folders[:] = [name for name in folders if name not in ("build", ".git")]
            for name in names:
                if os.path.relpath(os.path.join(folder, name), self.tree) not in wanted:
                    os.remove(os.path.join(folder, name))
        self._sources = [p for p in wanted if p.endswith((".cpp", ".h", ".inl", ".c"))]
        return state.hexdigest()

    def compiled_with(self, path):
        """The .cpp files that a file is, or is included by, directly or not."""
        if not self.includers:
            for source in self._sources:
                for name in re.findall(r'^\s*#\s*include\s+"([^"]+)"', self.read(source), re.M):
                    self.includers.setdefault(os.path.basename(name), set()).add(source)
        seen, todo = set(), [path]
        while todo:
            current = todo.pop()
            if current not in seen:
                seen.add(current)
                todo += self.includers.get(os.path.basename(current), ())
        return {p for p in seen if p.endswith((".cpp", ".c"))}


class Test:
    def __init__(self, name, target, distance):
        self.name, self.target, self.distance = name, target, distance
        self.seconds = None  # of a run that passed; None: not known yet
        self.sound = True  # passes without a mutant


class Preset:
    """One configuration of the copy: which tests see a file, and building."""

    def __init__(self, workshop, name):
        self.workshop, self.name = workshop, name
        self.folder = workshop.path("build", name)
        self.tests = {}
        self._configure()
        self._read_targets()
        self._read_tests()

    def _configure(self):
        query = os.path.join(self.folder, ".cmake", "api", "v1", "query")
        os.makedirs(query, exist_ok=True)
        open(os.path.join(query, "codemodel-v2"), "w").close()
        done = subprocess.run(["cmake", "--preset", self.name, "-S", self.workshop.tree], cwd=self.workshop.tree,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            sys.exit(f"error: {self.name} cannot be configured\n{done.stdout[-3000:]}")

    def _read_targets(self):
        reply = os.path.join(self.folder, ".cmake", "api", "v1", "reply")
        index = max(name for name in os.listdir(reply) if name.startswith("index-"))
        with open(os.path.join(reply, index)) as file:
            model = next(o for o in json.load(file)["objects"] if o["kind"] == "codemodel")
        with open(os.path.join(reply, model["jsonFile"])) as file:
            listed = json.load(file)["configurations"][0]["targets"]
        self.sources, self.users, self.artifacts = {}, {}, {}
        names = {entry["id"]: entry["name"] for entry in listed}
        for entry in listed:
            with open(os.path.join(reply, entry["jsonFile"])) as file:
                target = json.load(file)
            name = target["name"]
            self.sources[name] = {os.path.normpath(s["path"]) for s in target.get("sources", [])}
            for dependency in target.get("dependencies", []):
                if dependency["id"] in names:
                    self.users.setdefault(names[dependency["id"]], set()).add(name)
            for artifact in target.get("artifacts", []):
                if target["type"] == "EXECUTABLE":
                    self.artifacts[os.path.join(self.folder, artifact["path"])] = name

    def _read_tests(self):
        """From ctest's own files: ctest itself does not tell the command of a test that is not built yet."""
        for folder, _, names in os.walk(self.folder):
            if "CTestTestfile.cmake" not in names:
                continue
            with open(os.path.join(folder, "CTestTestfile.cmake")) as file:
                for name, command in re.findall(r'^add_test\((?:\[=\[)?(.+?)(?:\]=\])? (".*)\)$', file.read(), re.M):
                    for word in re.findall(r'"((?:[^"\\]|\\.)*)"', command):
                        if word in self.artifacts:
                            self.tests[name] = self.artifacts[word]

    def targets_with(self, path):
        files = self.workshop.compiled_with(path)
        return {name for name, sources in self.sources.items() if sources & files}

    def tests_of(self, path):
        """The tests whose program has the file in it or needs one that has; nearest first."""
        distance = {name: 0 for name in self.targets_with(path)}
        todo = list(distance)
        while todo:
            name = todo.pop(0)
            for user in self.users.get(name, ()):
                if user not in distance:
                    distance[user] = distance[name] + 1
                    todo.append(user)
        return [Test(name, target, distance[target]) for name, target in self.tests.items() if target in distance]

    def compile_command(self, path):
        """How one file that holds it is compiled, as a list of words; None when none is."""
        files = {self.workshop.path(p) for p in self.workshop.compiled_with(path)}
        with open(os.path.join(self.folder, "compile_commands.json")) as file:
            entries = [e for e in json.load(file) if os.path.normpath(e["file"]) in files]
        entries.sort(key=lambda e: os.path.normpath(e["file"]) != self.workshop.path(path))
        return entries[0] if entries else None
