# SPDX-License-Identifier: MIT
"""The sample of every language prints the same lines."""
import os
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BINDINGS = ROOT / "bindings"
LIBRARY = Path(os.environ["VLT_LIBRARY"]).parent
ENVIRONMENT = {**os.environ, "LD_LIBRARY_PATH": str(LIBRARY)}


def printed(language, folder, *commands):
    """What the last command prints, given the product's folder and the package to make."""
    for command in commands[:-1]:
        subprocess.run(list(map(str, command)), check=True, stdout=subprocess.DEVNULL)
    sample = [*commands[-1], ROOT / "examples/bicycle", folder / f"{language}.vlt"]
    return subprocess.run(list(map(str, sample)), env=ENVIRONMENT, check=True, capture_output=True, text=True).stdout


def test_every_sample_prints_the_same_lines(tmp_path):
    by_c = printed("c", tmp_path, ["cc", "-std=c99", "-Wall", "-Wextra", "-Wpedantic", "-Werror", f"-I{ROOT}/include",
                                   BINDINGS / "c/sample.c", f"-L{LIBRARY}", "-lvlt", "-o", tmp_path / "c"],
                   [tmp_path / "c"])
    assert "kdbmain.txt" in by_c and "  1 x FR-100 Frame set" in by_c
    assert printed("python", tmp_path, [sys.executable, BINDINGS / "python/sample.py"]) == by_c
    assert printed("csharp", tmp_path, ["mcs", f"-out:{tmp_path}/Sample.exe", BINDINGS / "csharp/Sample.cs",
                                        BINDINGS / "csharp/Vlt.cs", BINDINGS / "csharp/generated/VltNative.cs"],
                   ["mono", tmp_path / "Sample.exe"]) == by_c
    assert printed("pascal", tmp_path, ["fpc", "-v0", f"-FE{tmp_path}", f"-Fu{BINDINGS}/pascal",
                                        f"-Fu{BINDINGS}/pascal/generated", f"-k-L{LIBRARY}",
                                        BINDINGS / "pascal/sample.pas"], [tmp_path / "sample"]) == by_c


def test_the_page_on_languages_shows_what_the_samples_hold():
    samples = {"c": "c/sample.c", "python": "python/sample.py", "csharp": "csharp/Sample.cs",
               "pascal": "pascal/sample.pas"}
    blocks = re.findall(r"^```(\w+)\n(.*?)^```", (ROOT / "docs/languages.md").read_text(), re.S | re.M)
    assert len(blocks) == 12
    for language, block in blocks:
        sample = [line.strip() for line in (BINDINGS / samples[language]).read_text().split("\n")]
        assert [line for line in block.split("\n") if line.strip() not in sample] == []


def test_the_first_programs_of_the_readme_print_the_same_line(tmp_path):
    programs = dict(re.findall(r"^```(python|csharp)\n(.*?)^```", (ROOT / "README.md").read_text(), re.S | re.M))
    (tmp_path / "First.cs").write_text(programs["csharp"])
    subprocess.run(["mcs", f"-out:{tmp_path}/First.exe", tmp_path / "First.cs", BINDINGS / "csharp/Vlt.cs",
                    BINDINGS / "csharp/generated/VltNative.cs"], check=True)
    for command in [sys.executable, "-c", programs["python"]], ["mono", tmp_path / "First.exe"]:
        run = subprocess.run(command, cwd=tmp_path, env=ENVIRONMENT, check=True, capture_output=True, text=True)
        assert run.stdout == "first.txt, 23 bytes\n"
