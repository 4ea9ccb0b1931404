/// How often this process has asked for memory with `new`.
#pragma once

long allocationCount();
