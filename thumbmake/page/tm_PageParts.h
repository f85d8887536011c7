// The page around its data: page.html with page.css and page.js in it, made into the
// program when it is built. A page is mark, head, data, tail.
#pragma once

extern const char tm_PAGE_MARK[]; // by which we know our own pages
extern const char tm_PAGE_HEAD[];
extern const char tm_PAGE_TAIL[];
