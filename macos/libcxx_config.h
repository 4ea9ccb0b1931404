// How the static libc++ is configured, for the library itself and for everything that uses it.
#pragma once

#define _LIBCPP_ABI_VERSION 1
#define _LIBCPP_ABI_NAMESPACE __1
#define _LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS
#define _LIBCPP_HAS_NO_VENDOR_AVAILABILITY_ANNOTATIONS
#define _LIBCPP_HARDENING_MODE _LIBCPP_HARDENING_MODE_NONE
#define _LIBCPP_PSTL_BACKEND_SERIAL
// What a library failure says would reach no reader.
#define _LIBCPP_VERBOSE_ABORT(...) __builtin_abort()
