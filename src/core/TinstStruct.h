#pragma once
#include <map>
#include <string>

// Definition of one op code, read from the first two lines of a Data/*.in file.
struct TinstStruct {
    std::string name;  // whole first line, e.g. "M - Measure"
    char opCode = 0;   // first character of that line
    bool yFlag = false;// second line begins with 'Y'
    int listOrder = 1024; // first number on line 2 after the flag; 1024 when none
};

// Op-code table ordered by letter.
using TopCodeTable = std::map<char, TinstStruct>;
