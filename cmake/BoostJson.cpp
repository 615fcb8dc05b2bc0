// Boost.JSON is used header-only; this is the one translation unit of a program that holds it.
#include <boost/json/src.hpp>
