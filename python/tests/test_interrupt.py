import signal
import subprocess
import sys
import time

from conftest import copy_of

CHILD = """
import sys
import nuvosim

said = False

def progress(realization, nrealization, percent, total):
    # Percentages may be skipped (threads report at their own pace): say it once.
    global said
    if realization == 1 and percent >= 50 and not said:
        said = True
        print("second realization half done", flush=True)

try:
    nuvosim.run(sys.argv[1], progress=progress)
except KeyboardInterrupt:
    print("interrupted", flush=True)
"""


def test_ctrl_c_stops_a_run_within_a_second_and_removes_its_files(channels, tmp_path):
    folder = copy_of(channels, tmp_path)
    text = (folder / "channels.in").read_text()
    (folder / "long.in").write_text(text.replace("50 40 1  // number", "160 160 1  // number"))
    child = subprocess.Popen([sys.executable, "-c", CHILD, str(folder / "long.in")],
                             stdout=subprocess.PIPE, text=True)
    assert child.stdout.readline() == "second realization half done\n"
    # The first realization's file exists until the run is stopped.
    assert (folder / "output/channels_real00000.gslib").exists()
    child.send_signal(signal.SIGINT)
    sent = time.monotonic()
    assert child.stdout.readline() == "interrupted\n"
    assert time.monotonic() - sent < 1.0
    assert child.wait(timeout=30) == 0
    assert list((folder / "output").iterdir()) == []
