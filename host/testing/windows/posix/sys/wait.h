#pragma once

#include "../PosixCalls.h"

#define WIFEXITED(status) ((status) >= 0)
#define WEXITSTATUS(status) (status)
#define WIFSIGNALED(status) (false)
#define WTERMSIG(status) (status)
