// The counting of CSmartPtrAble (declared in the public header SmartPtr). Its
// checks stay active in every build and end the process with the standard
// assertion message of the source "SmartPtr".
#include <SmartPtr>

#include "units/KVassert.h"

namespace MSXML2 {

CSmartPtrAble::~CSmartPtrAble() {
    XUN_ASSERT(_smart_ptr_refcount == 0, "_smart_ptr_refcount == 0", "SmartPtr", __LINE__,
               "virtual MSXML2::CSmartPtrAble::~CSmartPtrAble()");
}

void CSmartPtrAble::_smart_ptr_addref() {
    XUN_ASSERT(_smart_ptr_refcount >= 0, "_smart_ptr_refcount >= 0", "SmartPtr", __LINE__,
               "void MSXML2::CSmartPtrAble::_smart_ptr_addref()");
    ++_smart_ptr_refcount;
}

int CSmartPtrAble::_smart_ptr_release() {
    --_smart_ptr_refcount;
    XUN_ASSERT(_smart_ptr_refcount >= 0, "_smart_ptr_refcount >= 0", "SmartPtr", __LINE__,
               "int MSXML2::CSmartPtrAble::_smart_ptr_release()");
    return _smart_ptr_refcount;
}

} // namespace MSXML2
