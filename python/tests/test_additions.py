"""What adds to the tables or writes files: new units, new item types and the
generated include files (each in a fresh interpreter)."""

import os


def run_ok(run_python, code, **env):
    result = run_python(code, **env)
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout.splitlines()


def test_new_unit_and_item_type(run_python):
    lines = run_ok(
        run_python,
        """
        import xun
        xun.load()
        furlong = xun.new_unit("UnitFurlong", "furlong", "fur", "UnitFoot*660")
        print(furlong.tag, furlong.factor, furlong.abbreviation, xun.units()[-1] == furlong)
        print(xun.convert(1, "furlongs", "UnitFoot"))
        for args in (("UnitFurlong", "x", "x", "UnitFoot"), ("UnitOther", "x", "x", "UnitNothing*2")):
            try:
                xun.new_unit(*args)
            except xun.XunError as error:
                print(error)
        race = xun.new_item_type("ItemRaceDistance", "Race distance", "furlong")
        print(race.key, race.ident, race.description, race.units == [furlong])
        try:
            xun.new_item_type("ItemRaceDistance", "again", "UnitMeter")
        except xun.XunError as error:
            print(error)
        try:
            xun.new_unit("UnitBad", None, "x", "UnitFoot")
        except TypeError as error:
            print(error)
        """,
    )
    assert lines == [
        f"100000 {660 * 0.3048} fur True",
        "660.0",
        "xunUnitNew: the ident 'UnitFurlong' is already registered",
        "xunUnitNew: the expression 'UnitNothing*2' does not give a unit",
        "110000 ItemRaceDistance Race distance True",
        "xunItemTypeNew: the ident 'ItemRaceDistance' is already registered",
        "description must be a text, got NoneType",
    ]


def test_write_includes(run_python, tmp_path):
    out = tmp_path / "out"
    out.mkdir()
    lines = run_ok(
        run_python,
        f"""
        import os, xun
        xun.load()
        for path in xun.write_includes({str(out)!r}):
            print(os.path.basename(path), os.path.getsize(path) > 0)
        print(os.getcwd() == {str(tmp_path)!r})
        """,
    )
    assert lines == [
        "xunDefine.c__ True",
        "xunDefine.f__ True",
        "xunDefine.p__ True",
        "xunDefine.cs True",
        "xunAllowedUnits.HTML True",
        "True",
    ]
    c_header = (out / "xunDefine.c__").read_text(encoding="utf-8")
    assert "#define UnitMeter                  1200 /* meter */\n" in c_header
    fortran = (out / "xunDefine.f__").read_text(encoding="utf-8")
    assert "integer, parameter :: ItemAnyUnit          =        999  ! Any unit\n" in fortran


def test_write_includes_refuses_what_would_end_the_process(run_python, tmp_path):
    blocked = tmp_path / "blocked"
    blocked.mkdir()
    (blocked / "xunDefine.p__").mkdir()
    lines = run_ok(
        run_python,
        f"""
        import xun
        for directory in ({str(tmp_path / 'none')!r}, {str(blocked)!r}):
            try:
                xun.write_includes(directory)
            except xun.XunError as error:
                print(error)
        """,
    )
    assert lines == [
        f"'{tmp_path / 'none'}' is not a directory",
        f"cannot write '{os.path.join(str(blocked), 'xunDefine.p__')}': it is a directory",
    ]


def test_write_includes_leaves_the_working_directory_of_other_threads(run_python, tmp_path):
    out = tmp_path / "out"
    out.mkdir()
    (tmp_path / "relative.txt").write_text("here")
    lines = run_ok(
        run_python,
        f"""
        import os, threading, xun
        xun.load()
        seen, done = [], threading.Event()

        def read_relative_paths():
            while not done.is_set():
                try:
                    with open("relative.txt") as stream:
                        seen.append(stream.read())
                except OSError as error:
                    seen.append(repr(error))
                seen.append(os.getcwd())

        reader = threading.Thread(target=read_relative_paths)
        reader.start()
        for _ in range(20):
            xun.write_includes({str(out)!r})
        done.set()
        reader.join()
        print(len(seen) > 0, sorted(set(seen)))
        """,
    )
    assert lines == [f"True {sorted({'here', str(tmp_path)})}"]
    assert sorted(os.listdir(out)) == sorted(
        ["xunDefine.c__", "xunDefine.f__", "xunDefine.p__", "xunDefine.cs", "xunAllowedUnits.HTML"]
    )


def test_a_writer_process_that_fails_is_reported(run_python, tmp_path):
    gone = str(tmp_path / "gone")
    lines = run_ok(
        run_python,
        f"""
        import xun
        from xun import _loading
        xun.load()
        try:
            with _loading.lock:  # a directory removed after write_includes checked it
                _loading._write_includes_in_child({gone!r})
        except xun.XunError as error:
            print(error)
        print("alive")
        """,
    )
    assert lines == [
        f"xunWriteItemTypeIncludes: the process writing into '{gone}' ended with status 1: "
        f"FileNotFoundError: [Errno 2] No such file or directory: '{gone}'",
        "alive",
    ]
