// The one place where Boost.JSON, which is used without its library, is compiled.
#include <boost/json/src.hpp>
