#ifndef A
// */ 1
#endif
