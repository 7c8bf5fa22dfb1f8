// Loads the default installation and converts water levels from feet to
// meters in place, the missing value -999 kept, naming the units by the
// enums of the generated xunDefine.cs.
//
//   xun includes                      # writes xunDefine.cs
//   mcs -out:convert.exe Convert.cs $(pkg-config --variable=csharp_srcdir xun)/Xun.cs xunDefine.cs
//   KORVANE_HOME=$(pkg-config --variable=korvane_home xun) mono convert.exe
using System;
using System.Globalization;
using Ostrel.Generic.Korvane;

static class Convert
{
    static int Main()
    {
        Xun.Load();
        if (Xun.SetupPath == "") {
            Console.Error.WriteLine("cannot load the default installation: is KORVANE_HOME set?");
            return 1;
        }
        double[] levels = { 1.0, -999.0, 2.5 };
        if (!Xun.ConvertArray((int)xunUnit.UnitFoot, (int)xunUnit.UnitMeter, levels, -999.0)) {
            Console.Error.WriteLine(Xun.LastErrorMessage);
            return 1;
        }
        string[] texts = Array.ConvertAll(levels, v => v.ToString("R", CultureInfo.InvariantCulture));
        Console.WriteLine("levels in {0}: {1}", Xun.UnitAbbreviation((int)xunUnit.UnitMeter),
                          string.Join(" ", texts));
        return 0;
    }
}
