#include "registry/UnitRegistry.h"

CKVunitList UnitList_;
CKVunitMap UnitMap_;
CKVunitStringMap UnitStringMap_;

namespace {
// The find cache: the unit found by the last successful search and its place.
const CKVunit* PrevFoundUn = nullptr;
CKVunitList::iterator PrevFoundPos;
bool PrevFoundPosSet = false;
} // namespace

CKVunit* xunFindUnitByKey_(long key) {
    CKVunitMap::const_iterator it = UnitMap_.find(key);
    return it == UnitMap_.end() ? nullptr : it->second;
}

CKVunit* xunFindUnitByIdent_(const std::string& ident) {
    CKVunitStringMap::const_iterator it = UnitStringMap_.find(ident);
    return it == UnitStringMap_.end() ? nullptr : it->second;
}

int AddUnit_(CKVunit& unit, int atFront) {
    const long key = unit.m_lKey;
    const std::string& ident = unit.m_strIdent;
    if (xunFindUnitByKey_(key) != nullptr || xunFindUnitByIdent_(ident) != nullptr)
        return 0;
    if (atFront)
        UnitList_.push_front(&unit);
    else
        UnitList_.push_back(&unit);
    UnitMap_[key] = &unit;
    UnitStringMap_[ident] = &unit;
    return 1;
}

CKVunitList::iterator xunFindUnit_(const CKVunit* unit) {
    if (!PrevFoundPosSet) {
        PrevFoundPos = UnitList_.begin();
        PrevFoundPosSet = true;
    }
    CKVunitList::iterator it = (unit == PrevFoundUn) ? PrevFoundPos : UnitList_.begin();
    for (; it != UnitList_.end(); ++it) {
        if (*it == unit) {
            PrevFoundUn = unit;
            PrevFoundPos = it;
            return it;
        }
    }
    return UnitList_.end();
}

void xunRemoveFirstUnit_(long key, const std::string& ident) {
    UnitStringMap_.erase(ident);
    UnitMap_.erase(key);
    if (!UnitList_.empty())
        UnitList_.pop_front();
    PrevFoundUn = nullptr;
    PrevFoundPosSet = false;
}
