#include "registry/ItemTypeRegistry.h"

CKVitemTypeList ItemTypeList_;
CKVitemTypeMap ItemTypeMap_;
CKVitemTypeStringMap ItemTypeStringMap_;

CKVitemType* xunFindItemTypeByKey_(long key) {
    CKVitemTypeMap::const_iterator it = ItemTypeMap_.find(key);
    return it == ItemTypeMap_.end() ? nullptr : it->second;
}

CKVitemType* xunFindItemTypeByIdent_(const std::string& ident) {
    CKVitemTypeStringMap::const_iterator it = ItemTypeStringMap_.find(ident);
    return it == ItemTypeStringMap_.end() ? nullptr : it->second;
}

int AddItemType_(long key, CKVitemType& item) {
    const std::string& ident = item.m_strIdent;
    if (xunFindItemTypeByKey_(key) != nullptr || xunFindItemTypeByIdent_(ident) != nullptr)
        return 0;
    ItemTypeList_.push_back(&item);
    ItemTypeMap_[key] = &item;
    ItemTypeStringMap_[ident] = &item;
    return 1;
}
