#ifndef A
#define A
1
#endifx
