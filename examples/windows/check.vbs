' A script that checks mail:  cscript check.vbs
' With /status it only asks the component and shows no window.
Option Explicit

Dim mail
Set mail = CreateObject("VeskoEx.cVeskoEx")
mail.SetFont "Tahoma", 0
WScript.Echo "Minutes between checks: " & mail.CheckTime
WScript.Echo "Busy: " & mail.IsBusy

Dim status_only
status_only = False
If WScript.Arguments.Count > 0 Then status_only = (WScript.Arguments(0) = "/status")
If Not status_only Then
  mail.CheckMail
  WScript.Echo "The check is over."
End If

' Releasing the last object saves the settings.
Set mail = Nothing
