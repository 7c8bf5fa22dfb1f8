#include "registry/FilterRegistry.h"

CKVfilterList FilterList_;
CKVfilterMap FilterMap_;
CKVfilterStringMap FilterStringMap_;
long ProductFilter_ = 0x7FFFFFFFL;

CKVfilter* xunFindFilterByKey_(long bit) {
    CKVfilterMap::const_iterator it = FilterMap_.find(bit);
    return it == FilterMap_.end() ? nullptr : it->second;
}

CKVfilter* xunFindFilterByIdent_(const std::string& ident) {
    CKVfilterStringMap::const_iterator it = FilterStringMap_.find(ident);
    return it == FilterStringMap_.end() ? nullptr : it->second;
}

int AddFilter_(CKVfilter& filter) {
    const long bit = filter.m_lKey;
    const std::string& ident = filter.m_strIdent;
    if (xunFindFilterByKey_(bit) != nullptr || xunFindFilterByIdent_(ident) != nullptr)
        return 0;
    FilterList_.push_back(&filter);
    FilterMap_[bit] = &filter;
    FilterStringMap_[ident] = &filter;
    return 1;
}
