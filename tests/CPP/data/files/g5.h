1
#ifndef A
#define A
#endif
