# Makes FOLDER with COUNT files that hold no media and, last by name, one picture. On the building machine,
# since making many files in one folder under Wine costs their number squared.
math(EXPR last "${COUNT} - 1")
foreach(number RANGE 1 ${last})
    file(TOUCH ${FOLDER}/note${number}.txt)
endforeach()
file(TOUCH ${FOLDER}/zzz.jpg)
