#!/usr/bin/env python3
"""Runs a lot over a Slurm of two nodes on this machine, loses one of them in the middle, and compares with one process.

  slurm.py --tool build/release/tool/zerklsc

Needs root, and Debian's slurm-wlm and munge. All that it starts it ends, by process id.
"""
import argparse
import csv
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

MODULES, SHARDS = 320, 4
CAPTURES = 16
SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scale" / "slurm"
CONF = """\
ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
ReturnToService=2
SlurmdTimeout=10
MinJobAge=300
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
MUNGE_PID = pathlib.Path("/run/munge/munged.pid")


def wait_for(what, condition, seconds=120):
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            sys.exit(f"{what}: not within {seconds} s")
        time.sleep(0.2)
    return value


def output_of(*words):
    return subprocess.run(words, capture_output=True, text=True, check=True).stdout


def end(pid, with_signal=signal.SIGTERM):
    try:
        os.kill(pid, with_signal)
    except ProcessLookupError:
        return
    wait_for(f"the end of process {pid}", lambda: not pathlib.Path(f"/proc/{pid}/cmdline").exists()
             or not pathlib.Path(f"/proc/{pid}/cmdline").read_bytes())


def pid_in(path):
    try:
        return int(pathlib.Path(path).read_text())
    except (OSError, ValueError):
        return None


def start_munge():
    """Whether it has to be ended again."""
    if subprocess.run(["sh", "-c", "munge -n | unmunge"], capture_output=True, check=False).returncode == 0:
        return False
    key = pathlib.Path("/etc/munge/munge.key")
    if not key.exists():
        key.touch(mode=0o400)
        key.write_bytes(os.urandom(1024))
        shutil.chown(key, "munge")
    MUNGE_PID.parent.mkdir(exist_ok=True)
    shutil.chown(MUNGE_PID.parent, "munge")
    MUNGE_PID.parent.chmod(0o755)
    subprocess.run(["su", "-s", "/bin/sh", "munge", "-c", "/usr/sbin/munged"], check=True)
    return True


class Cluster:
    def __init__(self, folder):
        self.folder = folder
        (folder / "state").mkdir()
        conf = folder / "slurm.conf"
        conf.write_text(CONF.format(host=socket.gethostname().split(".")[0], folder=folder))
        os.environ["SLURM_CONF"] = str(conf)

    def __enter__(self):
        self.ends_munge = start_munge()
        subprocess.run(["slurmctld"], check=True)
        for node in ("n1", "n2"):
            subprocess.run(["slurmd", "-N", node], check=True)
        wait_for("two idle nodes", lambda: self.states() == {"n1": "idle", "n2": "idle"})
        return self

    def __exit__(self, *_):
        subprocess.run(["scancel", "--user=root"], check=False)
        for name in ("slurmd-n1", "slurmd-n2", "ctld"):
            if pid := pid_in(self.folder / f"{name}.pid"):
                end(pid)
        if self.ends_munge and (pid := pid_in(MUNGE_PID)):
            end(pid)

    @staticmethod
    def states():
        lines = output_of("sinfo", "--noheader", "--Node", "--format=%N %t").splitlines()
        return {node: state.rstrip("*") for node, state in map(str.split, lines)}

    def lose(self, node):
        """What the loss of a machine ends: slurmd, and everything that runs for it."""
        daemon = pid_in(self.folder / f"slurmd-{node}.pid")
        job = [int(proc.name) for proc in pathlib.Path("/proc").iterdir() if proc.name.isdigit()
               and f"SLURMD_NODENAME={node}".encode() in environment_of(proc)]
        steps = {parent_of(pid) for pid in job} - set(job)
        assert job, f"nothing runs on {node}"
        for pid in (daemon, *steps, *job):
            end(pid, signal.SIGKILL)
        (self.folder / f"slurmd-{node}.pid").unlink(missing_ok=True)


def environment_of(proc):
    try:
        return (proc / "environ").read_bytes().split(b"\0")
    except OSError:
        return []


def parent_of(pid):
    return int(pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()[1])


def lines_in(path):
    return path.read_bytes().count(b"\n") if path.exists() else 0


def tasks():
    """State, node and number of each task of a shard that has not ended."""
    text = output_of("squeue", "--noheader", "--array", "--name=zerklsc-shard", "--format=%T|%N|%i")
    return [line.split("|") for line in text.splitlines()]


def make_lot(folder):
    for i in range(CAPTURES):
        subprocess.run(["zerklsc", "simulate", "-q", "--width", "640", "--height", "480", "--seed", str(i),
                        "--centre", f"{46 + i * i % 9},{45 + i % 8}", "-o", f"c{i}.pgm"], cwd=folder, check=True)
    with open(folder / "lot.csv", "w", newline="") as file:
        writer = csv.writer(file)
        writer.writerow(["serial", "files"])
        writer.writerows([f"M{i:04}", f"c{i * i % CAPTURES}.pgm"] for i in range(MODULES))


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


def compare(folder):
    alone = folder / "alone"
    alone.mkdir()
    subprocess.run(["zerklsc", "batch", "-q", folder / "lot.csv", "-o", "results.jsonl"], cwd=alone, check=True)
    with open(alone / "lot.json", "wb") as document:
        subprocess.run(["zerklsc", "lot", "results.jsonl", "--golden", "golden.json", "-o", "lot.html", "--json"],
                       cwd=alone, check=True, stdout=document)
    results = folder / "results"
    shards = [path.read_bytes().splitlines() for path in sorted(results.glob("shard-*.jsonl"))]
    assert len(shards) == SHARDS and all(shards)
    whole = (alone / "results.jsonl").read_bytes().splitlines()
    assert len(whole) == MODULES and sorted(sum(shards, [])) == sorted(whole), "the results differ"
    for name in ("golden.json", "lot.html", "lot.json"):
        assert (results / name).read_bytes() == (alone / name).read_bytes(), f"{name} differs"
    print(f"{MODULES} modules: results, golden tables, page and document as from one process")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--tool", required=True, type=pathlib.Path)
    options = parser.parse_args()
    if os.geteuid() != 0:
        sys.exit("slurm.py: a Slurm of its own needs root")
    os.environ["PATH"] = f"{options.tool.resolve().parent}:{os.environ['PATH']}"
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_lot(folder)
        with Cluster(folder) as cluster:
            run_lost(cluster, folder)
        compare(folder)


if __name__ == "__main__":
    main()
