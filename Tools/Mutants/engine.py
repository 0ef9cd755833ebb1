"""Builds the tree that all mutants share. Then builds and tests each mutant in a folder of its worker.

Everything lies in build/mutants: `source`, a copy of the repository; `tree`, its build, kept for the next run; and a
folder for each worker, removed at the end. A mutant's objects are compiled with the commands of the tree. Programs
that use the shared library load the mutant's through LD_LIBRARY_PATH. Programs with the static library are relinked.
"""
import contextlib
import filecmp
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import threading
import time

LIBRARY = pathlib.Path('Src/AVSK/Src')
STATIC_LIBRARY = 'libAVSK_internal.a'
SHARED_LIBRARIES = ['libAVSK.so', 'Tests/libAVSK_faulty.so']
# These only repeat the tests more slowly, or build whole projects for minutes.
LEFT_OUT_PROGRAMS = {'avsk_observed_tests'}
LEFT_OUT_LABELS = {'sdk'}
SHORTEST_LIMIT = 10.0  # seconds


class Failure(Exception):
    """One line for the user."""


class Interrupted(Exception):
    pass


class Processes:
    """All running processes, so that an interruption can end them."""

    def __init__(self):
        self.lock = threading.Lock()
        self.running = set()
        self.stopped = False

    def run(self, command, cwd, env, limit=None, output=subprocess.DEVNULL):
        """The exit status, or None after `limit` seconds."""
        with self.lock:
            if self.stopped:
                raise Interrupted
            process = subprocess.Popen(command, cwd=cwd, env=env, stdin=subprocess.DEVNULL, stdout=output,
                                       stderr=output, start_new_session=True)
            self.running.add(process)
        try:
            status = process.wait(limit)
        except subprocess.TimeoutExpired:
            status = None
        finally:
            with self.lock:
                self.end(process)  # with its child processes
                self.running.discard(process)
            process.wait()
        if self.stopped:
            raise Interrupted
        return status

    @staticmethod
    def end(process):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)

    def stop(self):
        with self.lock:
            self.stopped = True
            for process in self.running:
                self.end(process)


class Test:
    def __init__(self, described, in_stage):
        properties = {entry['name']: entry['value'] for entry in described.get('properties', [])}
        self.name = described['name']
        self.command = described.get('command', [])
        self.folder = properties.get('WORKING_DIRECTORY')
        self.environment = dict(entry.split('=', 1) for entry in properties.get('ENVIRONMENT', []))
        self.labels = set(properties.get('LABELS', []))
        self.passing = {0, properties.get('SKIP_RETURN_CODE', 0)}
        self.must_fail = properties.get('WILL_FAIL', False)
        self.disabled = properties.get('DISABLED', False)
        self.in_stage = in_stage
        self.seconds = 0.0
        self.lock = threading.Lock()  # two runs of a test would write to the same files

    @property
    def limit(self):
        return max(SHORTEST_LIMIT, 10 * self.seconds)

    def has_passed(self, status):
        return status is not None and (status in self.passing) != self.must_fail


class Tree:
    """The build without a mutant: its commands, its tests, and how long each takes."""

    def __init__(self, repository, place, processes):
        self.repository, self.place, self.processes = repository, place, processes
        self.source, self.folder = place / 'source', place / 'tree'
        self.environment = dict(os.environ, SOURCE_DATE_EPOCH=str(int(time.time())))
        self.tests = []

    def sources(self):
        """The copied sources of the library: {name in the repository: text}."""
        folder = self.source / LIBRARY
        return {str(LIBRARY / path.name): path.read_text() for path in sorted(folder.iterdir())
                if path.suffix in ('.cpp', '.h')}

    def copy_sources(self):
        """Unchanged files keep their time stamps, so that the build compiles only changes."""
        def copy(source, target):
            target.mkdir(parents=True, exist_ok=True)
            entries = [e for e in source.iterdir() if source != self.repository or e.name not in ('build', '.git')]
            for gone in {e.name for e in target.iterdir()} - {e.name for e in entries}:
                path = target / gone
                shutil.rmtree(path) if path.is_dir() and not path.is_symlink() else path.unlink()
            for entry in entries:
                other = target / entry.name
                if entry.is_dir():
                    copy(entry, other)
                elif not other.exists() or not filecmp.cmp(entry, other, shallow=False):
                    shutil.copyfile(entry, other)
                    shutil.copymode(entry, other)
        copy(self.repository, self.source)

    def step(self, label, command):
        log = self.place / 'log'
        print(f'{label:<42} ', end='', flush=True)
        started = time.monotonic()
        with log.open('w') as output:
            status = self.processes.run(command, self.place, self.environment, output=output)
        if status != 0:
            print('FAILED')
            lines = log.read_text(errors='replace').splitlines()
            first = next((i for i, line in enumerate(lines) if re.search('error:|CMake Error', line)), -30)
            print('\n'.join('    ' + line for line in lines[first:][:40]))
            raise Failure(f'{label} failed: see above')
        print(f'ok ({time.monotonic() - started:.0f} s)')

    def ask(self, *command):
        return subprocess.run(command, cwd=self.folder, env=self.environment, check=True, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, start_new_session=True).stdout

    def build(self):
        self.copy_sources()
        # A separate build type, without link-time optimisation and without debug information. RUNPATH instead of RPATH:
        # LD_LIBRARY_PATH takes precedence over the folder of the build.
        self.step('configure the build of the mutants', [
            'cmake', '--preset', 'release', '-S', str(self.source), '-B', str(self.folder),
            '-DCMAKE_BUILD_TYPE=Mutants', '-DCMAKE_C_FLAGS_MUTANTS=-O1', '-DCMAKE_CXX_FLAGS_MUTANTS=-O1',
            '-DCMAKE_EXE_LINKER_FLAGS=-Wl,--enable-new-dtags', '-DAVSK_BUILD_TESTS=ON', '-DAVSK_BUILD_BENCHMARKS=OFF'])
        self.step('build without a mutant', ['cmake', '--build', str(self.folder)])
        self.read_commands()
        self.read_tests()

    def read_commands(self):
        self.compile, self.objects = {}, {}
        library = str(self.source / LIBRARY)
        for entry in json.loads((self.folder / 'compile_commands.json').read_text()):
            command = shlex.split(entry['command'])
            made = command[command.index('-o') + 1]
            self.compile[made] = command
            if os.path.dirname(entry['file']) == library:
                self.objects[made] = os.path.basename(entry['file'])
        self.readers = {}  # for each file of the library the objects that depend on it
        made = None
        for line in self.ask('ninja', '-t', 'deps').splitlines():
            if not line.startswith(' '):
                made = line.split(':')[0]
            elif os.path.dirname(os.path.normpath(self.folder / line.strip())) == library:
                self.readers.setdefault(os.path.basename(line.strip()), set()).add(made)
        self.shared_links = {name: self.link_command(name) for name in SHARED_LIBRARIES}

    def link_command(self, target):
        lines = self.ask('ninja', '-t', 'commands', '-s', target).splitlines()
        return next(words for words in map(shlex.split, lines[-1].split(' && ')) if '-o' in words)

    def read_tests(self):
        self.static_programs = {}  # path: link command
        known = set()
        for described in json.loads(self.ask('ctest', '--show-only=json-v1'))['tests']:
            command = described.get('command')
            if not command:
                raise Failure(f"{described['name']}: the program of this test was not built")
            is_unit_test = any(word.startswith('--gtest_filter=') for word in command)
            test = Test(described, 1 if is_unit_test else 2)
            if test.disabled or test.labels & LEFT_OUT_LABELS or os.path.basename(command[0]) in LEFT_OUT_PROGRAMS:
                continue
            self.tests.append(test)
            for word in set(command) - known:
                known.add(word)
                path = pathlib.Path(word)
                if path.is_absolute() and path.is_file() and self.folder in path.parents and os.access(path, os.X_OK):
                    link = self.link_command(str(path.relative_to(self.folder)))
                    if STATIC_LIBRARY in link:
                        self.static_programs[word] = link
        if not any(test.in_stage == 1 for test in self.tests):
            raise Failure('the build has no tests: is GoogleTest installed?')


class Folder:
    """A copy of the library's sources with the objects made from it, for one worker."""

    def __init__(self, tree, name, scratch):
        self.tree, self.place, self.scratch = tree, tree.place / name, scratch / name
        shutil.rmtree(self.place, ignore_errors=True)
        self.place.mkdir(parents=True)
        shutil.copytree(tree.source / LIBRARY, self.place / 'Src')
        self.environment = dict(tree.environment, LD_LIBRARY_PATH=str(self.place), TMPDIR=str(self.scratch),
                                AVSK_FUZZ_TMP=str(self.scratch))

    def object(self, made, *more):
        return self.place / ''.join(more) / made.replace('/', '_')

    def compile(self, made, *more):
        """Compiles an object of the tree from the sources in this folder; returns whether that succeeded."""
        library, target = str(self.tree.source / LIBRARY), self.object(made, *more)
        target.parent.mkdir(exist_ok=True)
        # Relative paths make the object independent of the folder, so that objects can be compared.
        command = [word.replace(library, 'Src', 1) if word.startswith((library, '-I' + library)) else word
                   for word in self.tree.compile[made]]
        command[command.index('-o') + 1] = str(target)
        return self.tree.processes.run(command + ['-w', *more], self.place, self.environment) == 0


class Original(Folder):
    """The unchanged library, to compare machine code with."""

    def __init__(self, tree, scratch):
        super().__init__(tree, 'original', scratch)
        self.lock = threading.Lock()

    def is_same(self, other, made, *more):
        with self.lock:
            target = self.object(made, *more)
            if not target.exists() and not self.compile(made, *more):
                raise Failure(f'{made} of the unchanged library does not compile')
        return filecmp.cmp(target, other.object(made, *more), shallow=False)


class Worker(Folder):
    """Builds and tests one mutant after the other."""

    def __init__(self, tree, name, scratch, original):
        super().__init__(tree, name, scratch)
        self.original = original
        self.changed, self.linked = set(), {}

    def build(self, mutant, text):
        """Builds the shared libraries; returns '', 'does not compile' or 'same code'."""
        self.clear()
        (self.place / 'Src' / os.path.basename(mutant.file)).write_text(mutant.apply(text))
        readers = self.tree.readers.get(os.path.basename(mutant.file), set()) & set(self.tree.objects)
        for made in sorted(readers, key=lambda name: (os.path.getsize(self.tree.folder / name), name)):
            if not self.compile(made):
                return 'does not compile'
            self.changed.add(made)
        if all(self.original.is_same(self, made) for made in self.changed):
            return 'same code'
        for name, command in self.tree.shared_links.items():
            if self.link(command, self.place / os.path.basename(name)) != 0:
                return 'does not compile'
        return ''

    def restore(self, mutant, text):
        (self.place / 'Src' / os.path.basename(mutant.file)).write_text(text)

    def clear(self):
        for path in self.place.iterdir():
            if path.name != 'Src':
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        self.changed, self.linked = set(), {}

    def is_same_when_optimised(self):
        return all(self.compile(made, '-O2') and self.original.is_same(self, made, '-O2')
                   for made in sorted(self.changed))

    def link(self, command, target):
        words = [str(self.object(word)) if word in self.changed else word for word in command]
        words = [str(self.place / word) if word == STATIC_LIBRARY else word for word in words]
        words[words.index('-o') + 1] = str(target)
        return self.tree.processes.run(words, self.tree.folder, self.environment)

    def program(self, path, mutant):
        """Returns the path of a test program, relinked with the mutant if it contains the static library."""
        command = self.tree.static_programs.get(path)
        if not command:
            return path
        if path not in self.linked:
            archive = self.place / STATIC_LIBRARY
            if not archive.exists():
                objects = [str(self.object(made)) if made in self.changed else made for made in self.tree.objects]
                self.tree.processes.run(['ar', 'rcs', str(archive), *objects], self.tree.folder, self.environment)
            # Tests of a header instantiate library code in their own objects.
            own = self.tree.readers.get(os.path.basename(mutant.file), set()).intersection(command)
            built = all(self.compile(made) for made in sorted(own))
            self.changed |= own
            target = self.place / os.path.basename(path)
            built = built and self.link(command, target) == 0
            self.changed -= own
            self.linked[path] = str(target) if built else None
        return self.linked[path]

    def run(self, test, mutant=None):
        """Returns whether the test passed, and its duration."""
        command = [self.program(word, mutant) for word in test.command] if mutant else test.command
        if None in command:  # the test's source does not compile with the mutant
            return False, 0.0
        self.scratch.mkdir(parents=True, exist_ok=True)
        with test.lock:
            started = time.monotonic()
            status = self.tree.processes.run(command, test.folder or self.tree.folder,
                                             dict(self.environment, **test.environment), test.limit)
        seconds = time.monotonic() - started
        shutil.rmtree(self.scratch, ignore_errors=True)
        return test.has_passed(status), seconds
