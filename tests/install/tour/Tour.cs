// The tour of tour.c in C#: the same lines, through the installed Xun.cs
// and the enums of the xunDefine.cs that the installed library wrote.
//   mcs -out:tour.exe Tour.cs Xun.cs xunDefine.cs && mono tour.exe
using System;
using Ostrel.Generic.Korvane;

static class Tour
{
    static string Ident(int tag)
    {
        return Xun.UnitIdent(tag) ?? "none";
    }

    static int Main()
    {
        Xun.Load();
        int item;
        if (!Xun.ItemTypeKeyFromIdent("ItemWaterLevel", out item) ||
            item != (int)xunItem.ItemWaterLevel)
            return 1;
        int n = Xun.xunGetItemUnitCount(item);
        Console.WriteLine("item ItemWaterLevel: {0} units", n);
        for (int seq = 1; seq <= n; ++seq) {
            int tag;
            Xun.ItemUnitSeq(item, seq, out tag);
            Console.WriteLine("  {0} {1}", tag, Ident(tag));
        }

        int filter, first;
        Xun.FilterKeyFromIdent("FilterHydrology", out filter);
        Xun.FilteredItemTypeSeq(filter, 1, out first);
        Console.WriteLine("filter FilterHydrology: {0} item types, the first {1}, ItemWaterLevel {2}",
                          Xun.xunGetFilteredItemTypeCount(filter), Xun.ItemTypeIdent(first),
                          Xun.ItemFilterEqv(item, filter) ? "in it" : "not in it");

        const int meter = (int)xunUnit.UnitMeter;
        const int foot = (int)xunUnit.UnitFoot;
        int user;
        double x;
        Xun.SetItemUserUnit(item, foot);
        Xun.ItemUserUnit(item, out user);
        Xun.ConvertToUserUnit(item, meter, 1.0, out x);
        Console.WriteLine("user unit of ItemWaterLevel: {0}; 1 m = {1} millionths", Ident(user),
                          (long)Math.Round(x * 1e6));

        const double missing = -999.0;
        double[] before = { 1.0, missing, 2.5, 10.0 };
        double[] values = (double[])before.Clone();
        Xun.ConvertArrayToUserUnit(item, meter, values, missing);
        int converted = 0;
        bool same = true;
        for (int i = 0; i < values.Length; ++i) {
            if (before[i] == missing) {
                same = same && values[i] == missing;
                continue;
            }
            Xun.ConvertToUserUnit(item, meter, before[i], out x);
            same = same && values[i] == x;
            if (values[i] != before[i])
                ++converted;
        }
        Console.WriteLine("array: {0} of {1} converted, -999 kept and each as converted alone: {2}",
                          converted, values.Length, same ? "yes" : "no");

        int match, eqv;
        double factor;
        Xun.UnitMultiply(meter, meter, out match, out eqv, out factor);
        string line = "derived: m*m = " + Ident(match);
        Xun.UnitDivide(meter, (int)xunUnit.UnitSecond, out match, out eqv, out factor);
        line += ", m/s = " + Ident(match);
        Xun.UnitPower(foot, 2.0, out match, out eqv, out factor);
        Console.WriteLine("{0}, ft^2 = {1} ({2} times {3} billionths)", line, Ident(match),
                          Ident(eqv), (long)Math.Round(factor * 1e9));
        return 0;
    }
}
