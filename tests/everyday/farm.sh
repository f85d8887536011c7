#!/usr/bin/env bash
# A farm: a real Slurm of four nodes on this machine makes a library, and one of its nodes
# dies in the middle. Then the same parts without a scheduler: GNU parallel, on this machine
# and over two servers of ssh on the loopback.
set -euo pipefail
cd "$(dirname "$0")/../.."
scripts/install-deps.sh slurmctld slurmd slurm-client munge parallel openssh-server openssh-client
cmake --preset release >/dev/null
cmake --build --preset release --target thumbmake thumbrender vaskel
. build/release/env.sh

farm=$(mktemp -d)
export SLURM_CONF=$farm/slurm.conf XDG_CACHE_HOME=$farm/cache
pids() { cat "$farm"/*.pid 2>/dev/null || true; }
stop() {
    local pid
    for pid in $(pids); do kill "$pid" 2>/dev/null || true; done
    sleep 2
    for pid in $(pids); do kill -9 "$pid" 2>/dev/null || true; done
    rm -rf "$farm"
}
trap stop EXIT

start_slurm() {
    head -c 128 /dev/urandom >"$farm/key"
    chmod 400 "$farm/key"
    mkdir "$farm/state"
    munged --force --key-file="$farm/key" --socket="$farm/socket" --pid-file="$farm/munged.pid" \
           --log-file="$farm/munged.log" --seed-file="$farm/munged.seed"
    cat >"$SLURM_CONF" <<END
ClusterName=test
SlurmctldHost=$(hostname -s)(127.0.0.1)
SlurmUser=root
AuthInfo=socket=$farm/socket
ProctrackType=proctrack/pgid
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
MaxArraySize=1001
SlurmdParameters=config_overrides
SlurmdSpoolDir=$farm/%n
SlurmdPidFile=$farm/%n.pid
SlurmdLogFile=$farm/%n.log
SlurmctldPidFile=$farm/slurmctld.pid
SlurmctldLogFile=$farm/slurmctld.log
StateSaveLocation=$farm/state
SlurmdTimeout=10
MinJobAge=10
NodeName=n[1-4] NodeHostname=$(hostname -s) NodeAddr=127.0.0.1 Port=[17001-17004] CPUs=2
PartitionName=t Nodes=ALL Default=YES State=UP
END
    slurmctld
    local node
    for node in n1 n2 n3 n4; do slurmd -N "$node"; done
    for _ in $(seq 50); do
        [ "$(sinfo -h -o %T | sort -u)" != idle ] || return 0
        sleep .2
    done
    sinfo
    return 1
}

# library FOLDER COUNT: palettes of different colours, one of which is none.
library() {
    local i
    mkdir -p "$1/deep folder"
    for i in $(seq "$2"); do
        printf 'ShaderType surface\nVVaskel "v_matte diff .%03d .5 .2"\n' "$i" \
            >"$1/deep folder/p$i.palette"
    done
    printf 'ShaderType surface\nVVaskel v_mate\n' >"$1/bad.palette"
}

# The slurmd of n2 and the task that it runs, from one moment to the next.
kill_node() {
    until squeue -h -t R -o %N 2>/dev/null | grep -q n2; do sleep .2; done
    local step
    step=$(pgrep -f "slurmstepd: \[$(squeue -h -t R -w n2 -o %A | head -n 1)\." | head -n 1 || true)
    kill -9 "$(cat "$farm/n2.pid")"
    [ -z "$step" ] || kill -9 "$step" 2>/dev/null || true
    rm "$farm/n2.pid"
    echo "node n2 killed"
}

whole() {
    python3 - "$1" <<'END'
import os, sys
for folder, _, files in os.walk(sys.argv[1]):
    for name in files:
        if name.endswith(".palette") and name != "bad.palette":
            data = open(os.path.join(folder, name[:-8] + ".jpg"), "rb").read()
            assert data[:2] == b"\xff\xd8" and data[-2:] == b"\xff\xd9", name
        assert name.endswith((".palette", ".jpg")), name
END
}

# Two machines that see the same files, with the settings of the build tree.
start_ssh() {
    local port
    ssh-keygen -q -t ed25519 -N '' -f "$farm/id"
    mkdir -p /run/sshd
    for port in 17011 17012; do
        ssh-keygen -q -t ed25519 -N '' -f "$farm/host$port"
        cat >"$farm/sshd$port" <<END
ListenAddress 127.0.0.1:$port
HostKey $farm/host$port
AuthorizedKeysFile $farm/id.pub
StrictModes no
UsePAM no
PidFile $farm/sshd$port.pid
SetEnv PATH=$PATH VDX=$VDX XDG_CACHE_HOME=$XDG_CACHE_HOME
END
        /usr/sbin/sshd -f "$farm/sshd$port" -E "$farm/sshd$port.log"
        cat >>"$farm/ssh" <<END
Host m$port
HostName 127.0.0.1
Port $port
END
    done
    cat >>"$farm/ssh" <<END
Host *
IdentityFile $farm/id
IdentitiesOnly yes
StrictHostKeyChecking no
UserKnownHostsFile /dev/null
LogLevel ERROR
END
}

start_slurm
library "$farm/lib" 300
kill_node &
thumbmake --size 64 --quality draft --submit slurm --wait "$farm/lib" 2>&1 | tee "$farm/said" || true
wait
grep -q '^300 made, 1 failed, 0 up to date$' "$farm/said"
whole "$farm/lib"
{ thumbmake --size 64 --quality draft "$farm/lib" 2>/dev/null || true; } |
    grep -q '^0 made, 1 failed, 300 up to date$'
echo "Slurm: all pictures made, none half, with a node that died"

library "$farm/other" 40
eval "$(thumbmake --size 64 --quality draft --submit parallel "$farm/other")" || true
whole "$farm/other"
{ thumbmake --size 64 --quality draft "$farm/other" 2>/dev/null || true; } | tail -n 1 |
    grep -q '^40 made, 1 failed, 0 up to date$'
echo "GNU parallel: all pictures made"

start_ssh
library "$farm/third" 40
export PARALLEL_SSH="ssh -F $farm/ssh" PARALLEL="--sshlogin m17011,m17012 -j1"
eval "$(thumbmake --size 64 --quality draft --submit parallel "$farm/third")" || true
whole "$farm/third"
for port in 17011 17012; do grep -q 'Accepted publickey' "$farm/sshd$port.log"; done
echo "GNU parallel over ssh: all pictures made"
