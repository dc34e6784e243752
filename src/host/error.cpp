#include "host/error.hpp"
