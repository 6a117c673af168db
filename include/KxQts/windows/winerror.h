/// \file
/// What `#include <winerror.h>` finds in a source written for Windows.
#pragma once

#include <KxQts/winapi/errors.h>
#include <KxQts/winapi/types.h>

#define NO_ERROR 0

// Results of calls that tell success by the sign
#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001u)
#define E_NOINTERFACE ((HRESULT)0x80004002u)
#define E_POINTER ((HRESULT)0x80004003u)
#define E_ABORT ((HRESULT)0x80004004u)
#define E_FAIL ((HRESULT)0x80004005u)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFu)
#define E_ACCESSDENIED ((HRESULT)0x80070005u)
#define E_HANDLE ((HRESULT)0x80070006u)
#define E_OUTOFMEMORY ((HRESULT)0x8007000Eu)
#define E_INVALIDARG ((HRESULT)0x80070057u)

#define SUCCEEDED(result) ((HRESULT)(result) >= 0)
#define FAILED(result) ((HRESULT)(result) < 0)
#define HRESULT_CODE(result) ((result)&0xFFFF)
#define HRESULT_FACILITY(result) (((result) >> 16) & 0x1FFF)
#define FACILITY_WIN32 7
#define HRESULT_FROM_WIN32(error)                                                                  \
    ((HRESULT)(error) <= 0 ? (HRESULT)(error) : (HRESULT)(((error)&0xFFFFu) | 0x80070000u))
