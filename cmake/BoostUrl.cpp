/// Boost.URL for targets that use its headers only.
#include <boost/url/src.hpp>
