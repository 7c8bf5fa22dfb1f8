// CKVdimension: the physical dimension of a unit as seven real exponents.
#pragma once

#include <string>

class CKVdimension {
  public:
    // Exponents in base order: length, mass, time, temperature, electric
    // current, amount of substance, luminous intensity.
    CKVdimension(const double& length, const double& mass, const double& time,
                 const double& temperature, const double& current, const double& substance,
                 const double& luminous);
    CKVdimension(const CKVdimension& other);
    CKVdimension& operator=(const CKVdimension& other);
    virtual ~CKVdimension();

    // Process-wide shared instances, created on first use and never moved.
    static const CKVdimension& GetNonDim();
    static const CKVdimension& GetLength();
    static const CKVdimension& GetMass();
    static const CKVdimension& GetTime();
    static const CKVdimension& GetTemp();
    static const CKVdimension& GetCurr();
    static const CKVdimension& GetSubs();
    static const CKVdimension& GetLumi();

    void GetPowers(double& length, double& mass, double& time, double& temperature, double& current,
                   double& substance, double& luminous) const;

    // Exact equality of all seven exponents; no tolerance, deliberately.
    bool IsEqv(const CKVdimension& other) const;

    // 0 dimensionless, 1..7 a single base dimension (whatever its exponent),
    // 8 composite.
    int GetDimType() const;

    // Exponent of base position 1..7.
    double GetPower(int position) const { return m_dPowers[position - 1]; }

    static const int kBaseCount = 7;

  private:
    double m_dPowers[kBaseCount];

    friend CKVdimension operator*(const CKVdimension& a, const CKVdimension& b);
    friend CKVdimension operator/(const CKVdimension& a, const CKVdimension& b);
    friend CKVdimension operator^(const CKVdimension& a, const double& p);
};

// Dimension of a product: exponents added.
CKVdimension operator*(const CKVdimension& a, const CKVdimension& b);
// Dimension of a quotient: exponents subtracted.
CKVdimension operator/(const CKVdimension& a, const CKVdimension& b);
// Dimension of a power: exponents multiplied by p.
CKVdimension operator^(const CKVdimension& a, const double& p);

// A dimension as people write it: "L T-1", "L-1 M T-2", "1" for none (L
// length, M mass, T time, Θ temperature, I electric current, N amount of
// substance, J luminous intensity; each exponent the shortest text that
// reads back to it).
std::string xunDimensionText_(const CKVdimension& dim);
