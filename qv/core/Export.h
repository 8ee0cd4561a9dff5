/// \file
/// QV_EXPORT marks what the shared library exports: whole public classes (so that their type
/// information is one object across modules, which throwing, catching and converting through
/// SP<T> rely on) and public free functions one by one. Everything unmarked stays inside
/// libqvcore.
#pragma once

#define QV_EXPORT __attribute__((visibility("default")))
