// Loads the default installation, finds units by the names a user types and
// converts a value and an array of temperatures (-999 marks a missing value).
#include <cstdio>
#include <vector>

#include <xun.h>

int main() {
    xunLoadItemTypeTables(""); // $KORVANE_HOME/bin/XUN.xml and the language files
    int fahrenheit = 0, celsius = 0;
    if (!xunGetUnitTag("degrees Fahrenheit", &fahrenheit) || !xunGetUnitTag("Celsius", &celsius)) {
        std::fprintf(stderr, "unknown unit: is KORVANE_HOME set to an installation?\n");
        return 1;
    }
    double boiling = 0.0;
    xunConvertUnit(fahrenheit, celsius, &boiling, 212.0);
    std::printf("212 degrees Fahrenheit = %.6g degrees Celsius\n", boiling);

    std::vector<double> readings{32.0, -999.0, 98.6};
    if (!xunConvertItemArrayD(fahrenheit, celsius, readings.data(),
                              static_cast<int>(readings.size()), -999.0))
        return 1;
    for (double value : readings)
        std::printf("%.6g\n", value);
    return 0;
}
