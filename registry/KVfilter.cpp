#include "registry/KVfilter.h"

CKVfilter::CKVfilter(const std::string& keyText, long bit) : m_strKey(keyText), m_lKey(bit) {}

CKVfilter::~CKVfilter() {}
