#!/usr/bin/env python3
"""Runs a lot over a Slurm of two nodes on this machine, loses one of them in the middle, and compares with one process.

  slurm.py --tool build/release/tool/zerklsc

Needs root, and Debian's slurm-wlm and munge; ends with 77 and a line that says why where such a Slurm cannot run. All
that it starts it ends, by process id.
"""
import contextlib
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1] / "tool"))
from batch_line import Line, expect_call
from tool import SKIPPED, options_with_tool

MODULES, SHARDS = 240, 4
LONGEST = 300  # seconds, for all of it
SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scale" / "slurm"
CONF = """\
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
AuthInfo=socket={folder}/munge.sock
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
ReturnToService=2
SlurmdTimeout=10
MinJobAge=300
SchedulerParameters=sched_interval=5,bf_interval=5
SlurmctldPort=17000
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/spool-%n
SlurmctldPidFile={folder}/ctld.pid
SlurmdPidFile={folder}/slurmd-%n.pid
SlurmctldLogFile={folder}/ctld.log
SlurmdLogFile={folder}/slurmd-%n.log
NodeName=n[1-2] NodeHostname={host} NodeAddr=127.0.0.1 Port=[17001-17002] CPUs=1 State=UNKNOWN
PartitionName=main Nodes=ALL Default=YES MaxTime=INFINITE State=UP
"""
PROGRAMS = ("munged", "slurmctld", "slurmd", "sbatch", "scontrol", "squeue")


class CannotRun(Exception):
    """Why there is no Slurm here; no fault of what is tested."""


def wait_for(what, condition, seconds=120, failure=TimeoutError):
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            raise failure(f"{what}: not within {seconds} s")
        time.sleep(0.2)
    return value


def output_of(*words):
    return subprocess.run(words, capture_output=True, text=True, check=True).stdout


def processes(variable):
    """All whose environment began with `variable`, a name with its value."""
    found = set()
    for proc in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if variable.encode() in (proc / "environ").read_bytes().split(b"\0"):
                found.add(int(proc.name))
    return found


def words_of(pid):
    """Its command line; nothing when it has ended."""
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().split(b"\0")[:-1]
    return []


def kill(pids):
    for pid in pids:
        with contextlib.suppress(ProcessLookupError):
            os.kill(pid, signal.SIGKILL)
    wait_for("the end of what was killed", lambda: not any(map(words_of, pids)))


def start(*words):
    done = subprocess.run([str(word) for word in words], capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise CannotRun(f"{words[0]} does not start: {done.stderr.strip().splitlines()[-1:]}")


class Cluster:
    """Daemons of its own, for authentication too: none that the machine has is touched."""

    def __init__(self, folder):
        self.folder = folder
        folder.chmod(0o755)
        (folder / "state").mkdir()
        (folder / "munge.key").touch(mode=0o400)
        (folder / "munge.key").write_bytes(os.urandom(1024))
        conf = folder / "slurm.conf"
        conf.write_text(CONF.format(host=socket.gethostname().split(".")[0], folder=folder))
        os.environ["SLURM_CONF"] = str(conf)
        self.mark = f"SLURM_CONF={conf}"

    def __enter__(self):
        try:
            start("munged", *(f"--{name}-file={self.folder}/munge.{name}" for name in ("key", "pid", "log", "seed")),
                  f"--socket={self.folder}/munge.sock")
            start("slurmctld")
            for node in ("n1", "n2"):
                start("slurmd", "-N", node)
            wait_for("two idle nodes", lambda: self.states() == {"n1": "idle", "n2": "idle"}, 60, CannotRun)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        """The daemons and their jobs all have the name of the configuration, and a job may just have begun."""
        while left := processes(self.mark) - {os.getpid()}:
            kill(left)

    @staticmethod
    def states():
        lines = output_of("sinfo", "--noheader", "--Node", "--format=%N %t").splitlines()
        return {node: state.rstrip("*") for node, state in map(str.split, lines)}

    def lose(self, node):
        """What the loss of a machine ends: slurmd, and everything that runs for it."""
        daemon = {pid for pid in processes(self.mark) if words_of(pid)[-2:] == [b"-N", node.encode()]}
        job = processes(f"SLURMD_NODENAME={node}")
        assert daemon and job, f"nothing runs on {node}"
        # In this order: a step that saw its job end would report it, and the job would not be queued again.
        for ended in daemon, {parent_of(pid) for pid in job} - job - {1}, job:
            kill(ended)


def parent_of(pid):
    return int(pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[1])


def lines_in(path):
    return path.read_bytes().count(b"\n") if path.exists() else 0


def tasks():
    """State, node and number of each task of a shard that has not ended."""
    listed = output_of("squeue", "--noheader", "--array", "--name=zerklsc-shard", "--format=%T|%N|%i")
    return [line.split("|") for line in listed.splitlines()]


def run_lost(cluster, folder):
    merge = output_of(SCRIPTS / "lot", folder / "lot.csv", folder / "results", str(SHARDS)).strip()
    running = wait_for("a shard on n2", lambda: [task for task in tasks() if task[:2] == ["RUNNING", "n2"]])
    name = running[0][2]
    results = folder / "results" / f"shard-{name.split('_')[1]}.jsonl"
    begun = wait_for("results of n2", lambda: lines_in(results))
    cluster.lose("n2")
    left = lines_in(results)
    assert begun <= left < MODULES // SHARDS, f"the shard was at {left} lines: too late to lose it"
    wait_for("the loss of n2 to be seen", lambda: cluster.states()["n2"] == "down")
    wait_for("the shard to be queued again", lambda: any(task[2] == name and task[0] == "PENDING" for task in tasks()))
    subprocess.run(["scontrol", "update", f"jobid={name}", "StartTime=now"], check=True)
    wait_for("the merge", lambda: "JobState=COMPLETED" in output_of("scontrol", "show", "job", merge), 300)
    restarts = output_of("scontrol", "show", "job", name)
    assert "Restarts=1" in restarts, restarts
    print(f"n2 was lost when its shard was at {left} modules; another node went on")


def compare(line):
    expect_call(line.batch("results.jsonl", "-q"), 0)
    document = line.run("lot", "results.jsonl", "--golden", "golden.json", "-o", "lot.html", "--json").stdout
    line.write("lot.json", document)
    shards = [path.read_bytes().splitlines() for path in sorted(line.folder.glob("results/shard-*.jsonl"))]
    assert len(shards) == SHARDS and all(shards)
    whole = line.read("results.jsonl").splitlines()
    assert len(whole) == MODULES and sorted(sum(shards, [])) == sorted(whole), "the results differ"
    for name in ("golden.json", "lot.html", "lot.json"):
        assert line.read(f"results/{name}") == line.read(name), f"{name} differs"
    print(f"{MODULES} modules: results, golden tables, page and document as from one process")


def too_late(*_):
    raise TimeoutError(f"not done within {LONGEST} s")


def check_machine():
    if os.geteuid() != 0:
        raise CannotRun("a Slurm of its own needs root")
    if missing := [program for program in PROGRAMS if not shutil.which(program)]:
        raise CannotRun(f"{', '.join(missing)} not installed")


def run(tool):
    with tempfile.TemporaryDirectory() as name:
        line = Line(tool, name, MODULES, 640, 480)
        with Cluster(line.folder) as cluster:
            run_lost(cluster, line.folder)
        compare(line)


def main():
    tool = options_with_tool(__doc__).parse_args().tool
    os.environ["PATH"] = f"{tool.parent}:{os.environ['PATH']}:/usr/sbin"
    signal.signal(signal.SIGALRM, too_late)
    signal.alarm(LONGEST)
    try:
        check_machine()
        run(tool)
    except CannotRun as reason:
        print(f"slurm.py: skipped: {reason}")
        sys.exit(SKIPPED)


if __name__ == "__main__":
    main()
