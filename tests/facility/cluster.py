"""A Slurm cluster of one node, with daemons, sockets and ports of its own, which needs to be root."""

import os
import pathlib
import re
import shutil
import socket
import subprocess
import tempfile
import time

DAEMONS = ("munged", "slurmctld", "slurmd")
PLACES = "/usr/sbin:/sbin:" + os.environ.get("PATH", "")


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def release_of_slurm():
    said = subprocess.run([shutil.which("slurmd", path=PLACES), "-V"], capture_output=True, text=True, check=True).stdout
    return tuple(int(number) for number in re.findall(r"[0-9]+", said)[:2])


class Cluster:
    @staticmethod
    def is_installed():
        return os.geteuid() == 0 and all(shutil.which(name, path=PLACES) for name in (*DAEMONS, "sbatch"))

    def __enter__(self):
        # Names of sockets must be short.
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="slurm"))
        self.configuration = self.folder / "slurm.conf"
        self.daemons = []
        try:
            self.start()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for daemon in reversed(self.daemons):
            daemon.terminate()
            try:
                daemon.wait(timeout=20)
            except subprocess.TimeoutExpired:
                daemon.kill()
                daemon.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def start(self):
        key = self.folder / "munge.key"
        key.write_bytes(os.urandom(128))
        key.chmod(0o600)
        self.folder.chmod(0o755)
        (self.folder / "state").mkdir()
        (self.folder / "spool").mkdir()
        # Jobs need no control groups here. Older releases do not know this setting, and newer ones may not start without.
        if release_of_slurm() >= (23, 11):
            (self.folder / "cgroup.conf").write_text("CgroupPlugin=disabled\n", encoding="utf-8")
        host = socket.gethostname().split(".")[0]
        socket_of_munge = self.folder / "munge.socket"
        self.configuration.write_text(
            f"""ClusterName=test
SlurmctldHost={host}(127.0.0.1)
SlurmUser=root
AuthType=auth/munge
CredType=cred/munge
AuthInfo=socket={socket_of_munge}
SlurmctldPort={free_port()}
SlurmdPort={free_port()}
StateSaveLocation={self.folder}/state
SlurmdSpoolDir={self.folder}/spool
SlurmctldPidFile={self.folder}/slurmctld.pid
SlurmdPidFile={self.folder}/slurmd.pid
ProctrackType=proctrack/pgid
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SlurmdParameters=config_overrides
ReturnToService=2
MpiDefault=none
MailProg=/bin/true
SchedulerParameters=sched_interval=1
NodeName={host} NodeAddr=127.0.0.1 CPUs=8 State=UNKNOWN
PartitionName=all Nodes=ALL Default=YES State=UP
""",
            encoding="utf-8",
        )
        self.run("munged", "--foreground", "--force", f"--key-file={key}", f"--socket={socket_of_munge}",
                 f"--pid-file={self.folder}/munge.pid", f"--log-file={self.folder}/munge.log",
                 f"--seed-file={self.folder}/munge.seed")
        self.wait_for(socket_of_munge.exists)
        self.run("slurmctld", "-D", "-f", str(self.configuration))
        self.run("slurmd", "-D", "-f", str(self.configuration), "-N", host)
        self.wait_for(self.is_idle)

    def run(self, name, *arguments):
        with open(self.folder / f"{name}.out", "wb") as output:
            self.daemons.append(subprocess.Popen([shutil.which(name, path=PLACES), *arguments], stdout=output,
                                                 stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL))

    def is_idle(self):
        said = subprocess.run(["sinfo", "--noheader", "--format=%T"], env=os.environ | {"SLURM_CONF": self.configuration},
                              capture_output=True, text=True, check=False).stdout
        return said.strip() == "idle"

    def wait_for(self, condition, seconds=30):
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end or any(daemon.poll() is not None for daemon in self.daemons):
                said = "".join(f"{file.name}:\n{file.read_text(errors='replace')}" for file in self.folder.glob("*.out"))
                raise RuntimeError(f"Slurm does not start\n{said}")
            time.sleep(0.05)
