# Makes FOLDER with COUNT files that hold no media and, last by name, one picture. It runs on the build machine, because
# the time for making files in one folder grows with the square of their number under Wine.
math(EXPR last "${COUNT} - 1")
foreach(number RANGE 1 ${last})
    file(TOUCH ${FOLDER}/note${number}.txt)
endforeach()
file(TOUCH ${FOLDER}/zzz.jpg)
