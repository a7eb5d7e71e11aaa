Attribute VB_Name = "modRezept"
Option Explicit

Public Function RezeptLaden(ByVal Datei As String) As Boolean
    RezeptLaden = (Dir$(Datei) <> "")
End Function

Public Sub ChargeStarten()
    ' Der Mischer läuft an, sobald die Waagen bereit sind.
End Sub
