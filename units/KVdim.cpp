#include "units/KVdim.h"

#include <charconv>

CKVdimension::CKVdimension(const double& length, const double& mass, const double& time,
                           const double& temperature, const double& current,
                           const double& substance, const double& luminous)
    : m_dPowers{length, mass, time, temperature, current, substance, luminous} {}

CKVdimension::CKVdimension(const CKVdimension& other) = default;
CKVdimension& CKVdimension::operator=(const CKVdimension& other) = default;
CKVdimension::~CKVdimension() = default;

const CKVdimension& CKVdimension::GetNonDim() {
    static const CKVdimension dim(0, 0, 0, 0, 0, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetLength() {
    static const CKVdimension dim(1, 0, 0, 0, 0, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetMass() {
    static const CKVdimension dim(0, 1, 0, 0, 0, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetTime() {
    static const CKVdimension dim(0, 0, 1, 0, 0, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetTemp() {
    static const CKVdimension dim(0, 0, 0, 1, 0, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetCurr() {
    static const CKVdimension dim(0, 0, 0, 0, 1, 0, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetSubs() {
    static const CKVdimension dim(0, 0, 0, 0, 0, 1, 0);
    return dim;
}
const CKVdimension& CKVdimension::GetLumi() {
    static const CKVdimension dim(0, 0, 0, 0, 0, 0, 1);
    return dim;
}

void CKVdimension::GetPowers(double& length, double& mass, double& time, double& temperature,
                             double& current, double& substance, double& luminous) const {
    length = m_dPowers[0];
    mass = m_dPowers[1];
    time = m_dPowers[2];
    temperature = m_dPowers[3];
    current = m_dPowers[4];
    substance = m_dPowers[5];
    luminous = m_dPowers[6];
}

bool CKVdimension::IsEqv(const CKVdimension& other) const {
    for (int i = 0; i < kBaseCount; ++i)
        if (m_dPowers[i] != other.m_dPowers[i])
            return false;
    return true;
}

int CKVdimension::GetDimType() const {
    for (int i = 0; i < kBaseCount; ++i) {
        if (m_dPowers[i] != 0.0) {
            for (int j = i + 1; j < kBaseCount; ++j)
                if (m_dPowers[j] != 0.0)
                    return 8;
            return i + 1;
        }
    }
    return 0;
}

CKVdimension operator*(const CKVdimension& a, const CKVdimension& b) {
    CKVdimension r(a);
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        r.m_dPowers[i] = a.m_dPowers[i] + b.m_dPowers[i];
    return r;
}

CKVdimension operator/(const CKVdimension& a, const CKVdimension& b) {
    CKVdimension r(a);
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        r.m_dPowers[i] = a.m_dPowers[i] - b.m_dPowers[i];
    return r;
}

CKVdimension operator^(const CKVdimension& a, const double& p) {
    CKVdimension r(a);
    for (int i = 0; i < CKVdimension::kBaseCount; ++i)
        r.m_dPowers[i] = a.m_dPowers[i] * p;
    return r;
}

std::string xunDimensionText_(const CKVdimension& dim) {
    static const char* const kSymbols[CKVdimension::kBaseCount] = {"L", "M", "T", "\u0398",
                                                                   "I", "N", "J"};
    std::string text;
    for (int i = 1; i <= CKVdimension::kBaseCount; ++i) {
        const double p = dim.GetPower(i);
        if (p == 0.0)
            continue;
        if (!text.empty())
            text += " ";
        text += kSymbols[i - 1];
        if (p != 1.0) {
            // The shortest text that reads back to the same exponent.
            char number[32];
            const std::to_chars_result written = std::to_chars(number, number + sizeof number, p);
            text.append(number, written.ptr);
        }
    }
    return text.empty() ? "1" : text;
}
