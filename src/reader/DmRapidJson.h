#pragma once

// The one way the library includes RapidJSON, so that every translation unit
// sees the same configuration. With SSE2 on, RapidJSON's in-situ stream skips
// white space sixteen bytes at a time; JsonDocument keeps a plain parser too,
// through a stream type that the SSE specialisations do not match.
#if defined(__SSE2__) && !defined(RAPIDJSON_SSE2)
#define RAPIDJSON_SSE2
#endif
#ifndef RAPIDJSON_HAS_STDSTRING
#define RAPIDJSON_HAS_STDSTRING 1
#endif

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
