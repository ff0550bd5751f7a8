#include "platform/movie_writer.h"
